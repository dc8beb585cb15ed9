#include "benchmarks/end-to-end/Painter.h"

#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPolygonF>
#include <QSvgGenerator>
#include <map>
#include <vector>

namespace ktBenchmark {

namespace {

/// Everything is enlarged, because sizes of fonts are whole numbers there.
constexpr double sUnit = 100.0;

class QtPainter : public Painter {
public:
    QtPainter(const FlatDrawing& drawing, TextWork work)
        : mWork(work),
          mPage(QPointF(drawing.mLow.x, drawing.mLow.y) * sUnit, QPointF(drawing.mHigh.x, drawing.mHigh.y) * sUnit),
          mLines(convert(drawing.mLines)),
          mOutlines(convert(drawing.mOutlines)) {
        for (const FlatDrawing::TextRun& run : drawing.mTexts) {
            const int size = static_cast<int>(run.mSize * sUnit);
            const auto [entry, isNew] = mFonts.try_emplace({run.mFont, size});
            if (isNew) {
                QFont font(QString::fromStdString(run.mFont));
                font.setPixelSize(size);
                entry->second = std::make_unique<Font>(font);
            }
            mTexts.push_back({QPointF(run.mPosition.x, run.mPosition.y) * sUnit, &entry->second->mFont,
                              &entry->second->mMetrics, QString::fromStdString(run.mText)});
        }
    }

    std::string paint() override {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setViewBox(mPage);
        QPainter painter(&generator);
        QPen pen(Qt::black);
        pen.setWidthF(0.25 * sUnit);
        painter.setPen(pen);
        for (const auto& [points, isClosed] : mLines) {
            painter.drawPolyline(points);
        }
        painter.setBrush(QColor(255, 228, 181));
        for (const auto& [points, isClosed] : mOutlines) {
            if (isClosed) {
                painter.drawPolygon(points);
            } else {
                painter.drawPolyline(points);
            }
        }
        mTextWidth = 0.0;
        for (const Run& run : mTexts) {
            if (mWork == TextWork::Measure) {
                mTextWidth += run.mMetrics->horizontalAdvance(run.mText);
            }
            painter.setFont(*run.mFont);
            painter.drawText(run.mPosition, run.mText);
        }
        painter.end();
        return buffer.data().toStdString();
    }

private:
    using Outlines = std::vector<std::pair<QPolygonF, bool>>;

    struct Font {
        explicit Font(const QFont& font) : mFont(font), mMetrics(font) {}

        QFont mFont;
        QFontMetricsF mMetrics;
    };
    struct Run {
        QPointF mPosition;
        const QFont* mFont;
        const QFontMetricsF* mMetrics;
        QString mText;
    };

    static Outlines convert(const std::vector<FlatDrawing::Outline>& outlines) {
        Outlines converted;
        for (const FlatDrawing::Outline& outline : outlines) {
            QPolygonF points;
            for (const FlatDrawing::Point& point : outline.mPoints) {
                points << QPointF(point.x, point.y) * sUnit;
            }
            converted.emplace_back(std::move(points), outline.mIsClosed);
        }
        return converted;
    }

    TextWork mWork;
    QRectF mPage;
    Outlines mLines;
    Outlines mOutlines;
    std::map<std::pair<std::string, int>, std::unique_ptr<Font>> mFonts;
    std::vector<Run> mTexts;
};

}  // namespace

void startQt(int& argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication sApplication(argumentCount, arguments);
}

std::unique_ptr<Painter> createQtPainter(const FlatDrawing& drawing, TextWork work) {
    return std::make_unique<QtPainter>(drawing, work);
}

}  // namespace ktBenchmark

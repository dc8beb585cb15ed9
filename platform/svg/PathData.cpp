#include "platform/svg/EllipticArc_p.h"
#include "platform/svg/NumberFormat_p.h"
#include "platform/svg/PathData_p.h"
#include "platform/svg/TextBuffer_p.h"

#include <cmath>

namespace kt::svg {

namespace {

/// Room for a command with its six numbers.
constexpr std::size_t sCommandSize = std::size_t{7} * (sMaxNumberLength + 1);

/// Radii of half a turn are written this much smaller, and with so many decimals more that they keep their ratio.
constexpr double sHalfTurnFactor = 0.99;
constexpr int sHalfTurnDecimals = 3;

char* putNumber(char* out, double value, int decimals) {
    return decimals == sCoordinateDecimals ? formatCoordinate(out, value) : formatNumber(out, value, decimals);
}

class PointWriter {
public:
    PointWriter(double offsetX, double offsetY, int decimals)
        : mOffsetX(offsetX), mOffsetY(offsetY), mDecimals(decimals) {}

    char* putPoint(char* out, const Wm4::Vector2<float>& point) const {
        out = putNumber(out, static_cast<double>(point.x) + mOffsetX, mDecimals);
        *out++ = ' ';
        return putNumber(out, static_cast<double>(point.y) + mOffsetY, mDecimals);
    }

    char* putArc(char* out, const Wm4::Vector2<float>& start, const Wm4::Vector2<float>* points) const {
        const auto flags = static_cast<int>(points[1].y);
        const bool isHalfTurn =
            EllipticArc::fromEndPoints(start, points[0], points[1].x, points[1].y, points[2]).mIsHalfTurn;
        // Rounded radii a trace larger than half the rounded chord would push the centre of half a turn far aside.
        // Radii that are too small are safe: SVG lets them grow until the ends are opposite each other, keeping their
        // ratio.
        const double factor = isHalfTurn ? sHalfTurnFactor : 1.0;
        const int decimals = isHalfTurn ? mDecimals + sHalfTurnDecimals : mDecimals;
        out = putNumber(out, std::abs(static_cast<double>(points[0].x)) * factor, decimals);
        *out++ = ' ';
        out = putNumber(out, std::abs(static_cast<double>(points[0].y)) * factor, decimals);
        *out++ = ' ';
        out = formatNumber(out, static_cast<double>(points[1].x), sMaxDecimals);
        out = putText(out, (flags & 1) != 0 ? " 1 " : " 0 ");
        out = putText(out, (flags & 2) != 0 ? "1 " : "0 ");
        return putPoint(out, points[2]);
    }

    /// @param start  where the command begins.
    char* putCommand(char* out, Path::Command command, const Wm4::Vector2<float>& start,
                     const Wm4::Vector2<float>* points) const {
        switch (command) {
            case Path::Command::Move:
                *out++ = 'M';
                return putPoint(out, points[0]);
            case Path::Command::Line:
                *out++ = 'L';
                return putPoint(out, points[0]);
            case Path::Command::Cubic:
                *out++ = 'C';
                out = putPoint(out, points[0]);
                *out++ = ' ';
                out = putPoint(out, points[1]);
                *out++ = ' ';
                return putPoint(out, points[2]);
            case Path::Command::Arc:
                *out++ = 'A';
                return putArc(out, start, points);
            case Path::Command::Close:
                *out++ = 'Z';
                return out;
        }
        return out;
    }

private:
    double mOffsetX;
    double mOffsetY;
    int mDecimals;
};

}  // namespace

bool isFinite(const Path& path) {
    // A number that is not finite survives the product with zero.
    float sum = 0.0F;
    for (const Wm4::Vector2<float>& point : path.getPoints()) {
        sum += point.x * 0.0F + point.y * 0.0F;
    }
    return sum == 0.0F;
}

void appendPathData(TextBuffer& buffer, const Path& path, double offsetX, double offsetY, int decimals) {
    const PointWriter writer(offsetX, offsetY, decimals);
    const Wm4::Vector2<float>* points = path.getPoints().data();
    if (!path.isEmpty() && path.getCommands().front() != Path::Command::Move) {
        // Path data must begin with a move; a path without one begins at its origin.
        constexpr Wm4::Vector2<float> origin;
        buffer.commit(writer.putCommand(buffer.reserve(sCommandSize), Path::Command::Move, origin, &origin));
    }
    Wm4::Vector2<float> contourStart;
    Wm4::Vector2<float> current;
    for (const Path::Command command : path.getCommands()) {
        buffer.commit(writer.putCommand(buffer.reserve(sCommandSize), command, current, points));
        points += Path::getPointCount(command);
        if (command == Path::Command::Close) {
            current = contourStart;
        } else {
            current = points[-1];
            contourStart = command == Path::Command::Move ? current : contourStart;
        }
    }
}

}  // namespace kt::svg

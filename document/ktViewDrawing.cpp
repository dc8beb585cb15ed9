#include "document/ktViewDrawing.h"

#include "document/NestedLeaders_p.h"
#include "migration/ktAnnotationMigration.h"

#include <utility>

namespace ktLegacy {

namespace {

using Accepted = ktViewDrawing::Accepted;
using WarningKind = kt::svg::SvgWriter::Warning::Kind;

constexpr int sMetadataFlags =
    ktViewDrawing::AcceptViewMetadata | ktViewDrawing::AcceptKnownMetadata | ktViewDrawing::AcceptOtherMetadata;
static_assert(int{Accepted::AcceptViewMetadata} == int{ktAnnotationMigration::AcceptViewMetadata} &&
              int{Accepted::AcceptKnownMetadata} == int{ktAnnotationMigration::AcceptKnownMetadata} &&
              int{Accepted::AcceptOtherMetadata} == int{ktAnnotationMigration::AcceptOtherMetadata});

/// The option of the tool that lets a view pass which was refused for that reason.
const char* getRemedy(ktFindingCode cause) {
    switch (cause) {
        case ktFindingCode::ViewMetadata:
            return "--accept view-metadata";
        case ktFindingCode::KnownMetadata:
            return "--accept known-metadata";
        case ktFindingCode::OtherMetadata:
            return "--accept other-metadata";
        case ktFindingCode::RasterMissing:
        case ktFindingCode::NoRasterCallback:
            return "--accept missing-pictures";
        default:
            return "--accept failed-annotations";
    }
}

std::string describe(const kt::text::FontProblem& problem) {
    using Kind = kt::text::FontProblem::Kind;
    switch (problem.mKind) {
        case Kind::NoConfiguration:
            return "fonts cannot be read: the system's font configuration cannot be opened" +
                   (problem.mFile.empty() ? "" : ": '" + problem.mFile + "': " + problem.mReason);
        case Kind::NoFont:
            return "fonts cannot be read: there are none";
        case Kind::CannotOpen:
            return "fonts cannot be read: '" + problem.mFile + "': " + problem.mReason;
        case Kind::Damaged:
            break;
    }
    return "fonts cannot be read: '" + problem.mFile + "' holds no usable font";
}

ktFindingCode getWarningCode(WarningKind kind) {
    switch (kind) {
        case WarningKind::NumberNotFinite:
            return ktFindingCode::ItemNotFinite;
        case WarningKind::ColorUnknown:
            return ktFindingCode::ColorUnknown;
        case WarningKind::PictureUnknown:
            return ktFindingCode::PictureUnknown;
        case WarningKind::PictureTooLarge:
            return ktFindingCode::PictureTooLarge;
        case WarningKind::PictureWithoutData:
        case WarningKind::PictureNotBase64:
        case WarningKind::PictureDamaged:
            return ktFindingCode::PictureDamaged;
        case WarningKind::ElementTooLong:
            return ktFindingCode::ItemTooLarge;
        case WarningKind::TextUnreadable:
            return ktFindingCode::TextUnreadable;
        case WarningKind::PageTooLarge:
            return ktFindingCode::PageAbsurd;
        case WarningKind::OutlinesMissing:
            return ktFindingCode::OutlinesMissing;
        case WarningKind::GlyphMissing:
            return ktFindingCode::GlyphMissing;
    }
    return ktFindingCode::DrawingIncomplete;
}

}  // namespace

class ktViewDrawing::Impl {
public:
    Impl(const Options& options, PictureProvider pictures)
        : mAccepted(options.mAccepted),
          mPictures(std::move(pictures)),
          mMigration(options.mAccepted & sMetadataFlags, mPictures ? provideRaster : nullptr, this, options.mHeadSize),
          mWriter(options.mWriter) {
        mMigration.setMissingPicturesReplaced((mAccepted & AcceptMissingPictures) != 0);
    }

    /// Converts a view's annotations in order. Take receives each one that is migrated; it may release the legacy one.
    template <typename Take>
    bool convert(const ktAnnotationView& view, Take take) {
        mFindings.clear();
        mReason.clear();
        mLogLines.clear();
        mPieces.clear();
        mViewName = view.GetName();
        const bool isAccepted = mMigration.acceptViewMetadata(view);
        const std::vector<ktAnnotationMigration::LogLine> lines = takeLogLines();
        if (!isAccepted) {
            refuse(makeFailure(lines));
            return false;
        }
        std::size_t nestedLeaders = 0;
        for (std::size_t index = 0; index < view.mAnnotations.size(); ++index) {
            if (view.mAnnotations[index] == nullptr) {
                continue;
            }
            kt::ktPointer<kt::ktCadAnnotation> created;
            if (!convertAnnotation(*view.mAnnotations[index], index, created)) {
                return false;
            }
            if (created != nullptr) {
                nestedLeaders += countNestedLeaders(*view.mAnnotations[index]);
                take(std::move(created), index);
            }
        }
        if (refuseForFonts()) {
            return false;
        }
        if (nestedLeaders != 0) {
            ktLegacyFinding finding(
                ktFindingCode::NestedLeaders,
                std::to_string(nestedLeaders) + " leaders of nested annotations have no place in the new model");
            finding.mViewName = mViewName;
            mFindings.push_back(std::move(finding));
        }
        return true;
    }

    template <typename Release>
    bool draw(const ktAnnotationView& view, Release release) {
        mWriter.begin(view.GetName());
        std::vector<std::size_t> indices;  // of the annotations that are drawn, in the view
        const bool isDrawn = convert(view, [&](const kt::ktPointer<kt::ktCadAnnotation>& created, std::size_t index) {
            mWriter.add(*created);
            indices.push_back(index);
            release(index);
        });
        if (!isDrawn) {
            mWriter.begin({});
            return false;
        }
        mPieces = mWriter.finish();
        for (const kt::ktCadViewSvgWriter::Warning& warning : mWriter.getWarnings()) {
            ktLegacyFinding finding(getWarningCode(warning.mKind), warning.mWhat);
            finding.mViewName = mViewName;
            finding.mAnnotation = indices[warning.mAnnotation];
            finding.mAnnotationName = warning.mName;
            mFindings.push_back(std::move(finding));
        }
        return true;
    }

    std::vector<ktLegacyFinding> mFindings;
    std::string mReason;
    std::vector<std::string> mLogLines;
    std::vector<std::string_view> mPieces;

private:
    static bool provideRaster(const std::string& rasterName, std::string& rasterData, void* userData) {
        return static_cast<Impl*>(userData)->mPictures(rasterName, rasterData);
    }

    /// False when the annotation refuses its view. Created stays null when the annotation is left out instead.
    bool convertAnnotation(const ktAnnotationInterface& annotation, std::size_t index,
                           kt::ktPointer<kt::ktCadAnnotation>& created) {
        const bool isMigrated = mMigration.migrateAnnotation(annotation, mViewName, created);
        const std::vector<ktAnnotationMigration::LogLine> lines = takeLogLines();
        const auto locate = [&](ktLegacyFinding& finding) {
            finding.mAnnotation = index;
            finding.mAnnotationName = annotation.GetName();
        };
        if (!isMigrated) {
            if (refuseForFonts()) {
                return false;
            }
            ktLegacyFinding failure = makeFailure(lines);
            locate(failure);
            for (const unsigned int child : mMigration.getFailedSubAnnot()) {
                failure.mChild.push_back(child);
            }
            if ((mAccepted & AcceptFailedAnnotations) == 0) {
                refuse(std::move(failure));
                return false;
            }
            failure.mCode = ktFindingCode::AnnotationLeftOut;
            failure.mWhat = "the drawing leaves this annotation out: " + failure.mWhat;
            failure.mRemedy.clear();
            mFindings.push_back(std::move(failure));
            return true;
        }
        for (const ktAnnotationMigration::LogLine& line : lines) {
            ktLegacyFinding finding(line.mCode, line.mText);
            if (line.mCode == ktFindingCode::RasterMissing || line.mCode == ktFindingCode::NoRasterCallback) {
                finding.mCode = ktFindingCode::PictureReplaced;
                finding.mWhat = "a crossed box is drawn in the place of a picture: " + finding.mWhat;
            }
            finding.mViewName = mViewName;
            locate(finding);
            mFindings.push_back(std::move(finding));
        }
        return true;
    }

    std::vector<ktAnnotationMigration::LogLine> takeLogLines() {
        const std::vector<ktAnnotationMigration::LogLine>& lines = mMigration.getLogLines();
        for (const ktAnnotationMigration::LogLine& line : lines) {
            mLogLines.push_back(line.mText);
        }
        return lines;
    }

    /// The first line names the cause, later ones where it struck.
    ktLegacyFinding makeFailure(const std::vector<ktAnnotationMigration::LogLine>& lines) const {
        std::string what;
        for (const ktAnnotationMigration::LogLine& line : lines) {
            what += (what.empty() ? "" : ": ") + line.mText;
        }
        const ktFindingCode cause = lines.empty() ? ktFindingCode::NoReason : lines.front().mCode;
        ktLegacyFinding finding(cause, std::move(what));
        finding.mViewName = mViewName;
        finding.mRemedy = getRemedy(cause);
        return finding;
    }

    /// Refuses the view when fonts of the machine are out of order: texts would stand in other ones than they should.
    bool refuseForFonts() {
        const std::vector<kt::text::FontProblem> problems = mMigration.takeFontProblems();
        if (!problems.empty()) {
            ktLegacyFinding finding(ktFindingCode::FontsUnavailable, describe(problems.front()));
            finding.mViewName = mViewName;
            refuse(std::move(finding));
        }
        return !problems.empty();
    }

    void refuse(ktLegacyFinding why) {
        mReason = why.mWhat;
        mFindings.clear();
        mFindings.push_back(std::move(why));
    }

    int mAccepted;
    PictureProvider mPictures;
    ktAnnotationMigration mMigration;
    kt::ktCadViewSvgWriter mWriter;
    std::string mViewName;
};

ktViewDrawing::ktViewDrawing(const Options& options, PictureProvider pictures)
    : mImpl(std::make_unique<Impl>(options, std::move(pictures))) {}

ktViewDrawing::~ktViewDrawing() = default;

bool ktViewDrawing::draw(const ktAnnotationView& view) {
    return mImpl->draw(view, [](std::size_t) {});
}

bool ktViewDrawing::drawAndRelease(ktAnnotationView& view) {
    return mImpl->draw(view, [&view](std::size_t index) { view.mAnnotations[index].reset(); });
}

const std::vector<std::string_view>& ktViewDrawing::getPieces() const { return mImpl->mPieces; }

std::string ktViewDrawing::getSvg() const {
    std::string svg;
    for (const std::string_view piece : mImpl->mPieces) {
        svg += piece;
    }
    return svg;
}

kt::ktPointer<kt::ktCadAnnotationView> ktViewDrawing::migrate(const ktAnnotationView& view) {
    kt::ktPointer<kt::ktCadAnnotationView> migrated(new kt::ktCadAnnotationView);
    migrated->SetName(view.GetName());
    migrated->mOrigin = view.mOrigin;
    migrated->mNormal = view.mNormal;
    migrated->mAxis = view.mAxis;
    const bool isMigrated = mImpl->convert(view, [&](kt::ktPointer<kt::ktCadAnnotation> created, std::size_t) {
        migrated->mAnnotations.push_back(std::move(created));
    });
    return isMigrated ? migrated : kt::ktPointer<kt::ktCadAnnotationView>();
}

const std::vector<ktLegacyFinding>& ktViewDrawing::getFindings() const { return mImpl->mFindings; }

const std::string& ktViewDrawing::getReason() const { return mImpl->mReason; }

const std::vector<std::string>& ktViewDrawing::getLogLines() const { return mImpl->mLogLines; }

}  // namespace ktLegacy

#include "tools/ktannot/report/MigrationReportFile.h"

#include "tools/ktannot/ToolVersion.h"

namespace ktannot {

namespace {

SideOutput::Way getWay(ReportForm form, bool isContinued) {
    if (form == ReportForm::Whole) {
        return SideOutput::Way::Whole;
    }
    return isContinued ? SideOutput::Way::Append : SideOutput::Way::Stream;
}

}  // namespace

ReportForm MigrationReportFile::getForm(const std::string& path) {
    return path.ends_with(".jsonl") ? ReportForm::Lines : ReportForm::Whole;
}

MigrationReportFile::MigrationReportFile(const std::string& path, ReportForm form, bool isContinued)
    : mForm(form), mFile(path, getWay(form, isContinued)), mText(mFile.getDescriptor()), mJson(mText) {
    if (mForm == ReportForm::Whole) {
        mJson.beginObject();
        mJson.key("tool").text("ktannot");
        mJson.key("version").text(getToolVersion());
        mJson.key("documents").beginArray();
    }
}

void MigrationReportFile::writeHead(const std::string& options) {
    mJson.beginObject();
    mJson.key("report").number(1);
    mJson.key("tool").text("ktannot");
    mJson.key("version").text(getToolVersion());
    mJson.key("options").raw(options);
    mJson.endObject();
    mJson.endLine();
    mText.flush();
}

void MigrationReportFile::add(const DocumentReport& report) {
    if (report.mJson.empty()) {
        return;
    }
    if (mForm == ReportForm::Whole) {
        mJson.raw(report.mJson);
    } else {
        // One write for the line, so that a kill tears the last line at most.
        mText.write(report.mJson);
        mText.flush();
    }
}

void MigrationReportFile::writeCounts(const MigrationCounts& counts) {
    mJson.key("summary").beginObject();
    mJson.key("documents").number(counts.mDocuments);
    mJson.key("failedDocuments").number(counts.mFailedDocuments);
    mJson.key("skippedFiles").number(counts.mSkippedFiles);
    mJson.key("written").number(counts.mWritten);
    mJson.key("skipped").number(counts.mSkippedViews);
    mJson.key("refused").number(counts.mRefusedViews);
    mJson.key("failed").number(counts.mFailedViews);
    mJson.key("problems").number(counts.mProblems);
    mJson.endObject();
}

std::string MigrationReportFile::finish(const MigrationCounts& counts, ExitCode outcome) {
    if (mForm == ReportForm::Whole) {
        mJson.endArray();
    } else {
        mJson.beginObject();
    }
    writeCounts(counts);
    mJson.key("exit").number(static_cast<int>(outcome));
    mJson.endObject();
    mJson.endLine();
    if (!mText.flush()) {
        return "cannot write";
    }
    return mFile.publish();
}

}  // namespace ktannot

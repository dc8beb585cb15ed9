#include "tools/ktannot/report/DocumentReport.h"

#include "tools/ktannot/report/Packet.h"

#include <algorithm>
#include <utility>

namespace ktannot {

void DocumentReport::Group::add(std::string line) {
    ++mCount;
    if (mLines.size() < sLines) {
        mLines.push_back(std::move(line));
    }
}

DocumentReport::Group& DocumentReport::getGroup(Group::Kind kind, std::string_view cause) {
    const auto found = std::find_if(mGroups.begin(), mGroups.end(),
                                    [&](const Group& group) { return group.mKind == kind && group.mCause == cause; });
    if (found != mGroups.end()) {
        return *found;
    }
    Group& group = mGroups.emplace_back();
    group.mKind = kind;
    group.mCause = cause;
    return group;
}

std::string DocumentReport::toBytes() const {
    PacketWriter packet;
    packet.put(mOutcome);
    packet.put(mIsStopped);
    packet.put(mCounts);
    packet.put(mGroups.size());
    for (const Group& group : mGroups) {
        packet.put(group.mKind);
        packet.putText(group.mCause);
        packet.putText(group.mRemedy);
        packet.put(group.mCount);
        packet.put(group.mLines.size());
        for (const std::string& line : group.mLines) {
            packet.putText(line);
        }
    }
    packet.putText(mText);
    packet.putText(mFileNames);
    packet.putText(mJson);
    return packet.getBytes();
}

DocumentReport DocumentReport::fromBytes(std::string_view bytes) {
    PacketReader packet(bytes);
    DocumentReport report;
    report.mOutcome = packet.take<ExitCode>();
    report.mIsStopped = packet.take<bool>();
    report.mCounts = packet.take<MigrationCounts>();
    for (auto groups = packet.take<std::size_t>(); groups != 0; --groups) {
        Group& group = report.mGroups.emplace_back();
        group.mKind = packet.take<Group::Kind>();
        group.mCause = packet.takeText();
        group.mRemedy = packet.takeText();
        group.mCount = packet.take<std::size_t>();
        for (auto lines = packet.take<std::size_t>(); lines != 0; --lines) {
            group.mLines.push_back(packet.takeText());
        }
    }
    report.mText = packet.takeText();
    report.mFileNames = packet.takeText();
    report.mJson = packet.takeText();
    return report;
}

}  // namespace ktannot

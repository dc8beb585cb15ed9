#include "tools/ktannot/commands/InspectCommand.h"

#include "tools/ktannot/batch/DocumentLoader.h"
#include "tools/ktannot/batch/InputSet.h"
#include "tools/ktannot/report/DocumentNotices.h"
#include "tools/ktannot/report/LegacyJson.h"
#include "tools/ktannot/report/LegacyTree.h"

#include <CLI/CLI.hpp>

namespace ktannot {

std::string InspectCommand::getDetails() const {
    return "Examples:\n"
           "  ktannot inspect part.kts                  the views and annotations as a tree\n"
           "  ktannot inspect --json part.kts | jq .    the same for programs, with every number\n"
           "  ktannot inspect --json archive/ > all     one line of JSON for each document of a folder\n"
           "  curl -s https://example.org/a.json | ktannot inspect -\n\n" +
           getExitCodeText();
}

void InspectCommand::declareOptions(CLI::App& app) {
    declareInputs(app, mArguments);
    app.add_flag("--json", mIsJson, "Print one line of JSON for each document");
    declareMemoryLimit(app, mMemoryLimit);
    declareColor(app, mColor);
}

ExitCode InspectCommand::run(Channels& channels) {
    Console& console = channels.mConsole;
    const InputSet inputs(mArguments);
    JsonWriter json(console.out());
    LegacyTree tree(console.out(), Console::isColored(mColor));
    ExitCode outcome = ExitCode::AllWell;
    for (std::size_t index = 0; index < inputs.size(); ++index) {
        const SourceDocument document = loadDocument(inputs[index], mMemoryLimit);
        if (document.mIsSkipped) {
            continue;
        }
        if (mIsJson) {
            LegacyJson(json).writeDocument(document);
        } else if (document.mDocument.isLoaded()) {
            tree.print(document);
        }
        tellRefusal(console, document);
        outcome = worst(outcome, document.getOutcome());
    }
    return outcome;
}

}  // namespace ktannot

// qel archive: the variables of an archived list.
#include "tool.h"
#include "variables.h"

namespace tool {

void AddArchive(CLI::App& app, Status&) {
    struct Options {
        std::string file;
        bool oldest = false, json = false;
    };
    CLI::App* const command = app.add_subcommand("archive", "List the variables of an archived list");
    const auto options = std::make_shared<Options>();
    AddFile(*command, "FILE", options->file, "The archive, sealed or not");
    command->add_flag("--oldest", options->oldest, "The list has no head: it is of the oldest layout");
    command->add_flag("--json", options->json, "Write JSON");
    command->callback([options] {
        const CCalcVariableList list = ReadVariables(options->file, options->oldest);
        options->json ? Print(VariablesJson(list)) : Print(VariablesText(list));
    });
}

}  // namespace tool

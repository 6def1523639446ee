// SPDX-License-Identifier: LicenseRef-Halyard
// The program `docc`, the compiler of documents. Exit status: 0 done; 1 something is wrong with a document or a file,
// and standard error tells what and where; 2 the command line is wrong.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "Core/CApplication.h"
#include "Core/CProcess.h"
#include "Documents/ProductTags.h"
#include "Platform/PathText.h"
#include "Tools/Docc/Commands.h"

namespace {

brt::CProcessLifetime g_lifetime;

constexpr const char* kCompileHelp =
    R"(Everything that is wrong with the document is told with its place, and then nothing is written. The classes of the
product are what it is checked against.

Example:
  docc compile UserInterface.xml -o UserInterface.bin --shared SharedData.bin --resources resources.txt)";

int run(int argumentCount, char** arguments) {
    CLI::App app("Compiles the documents and resources of Halyard.", "docc");
    app.require_subcommand(0, 1);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("docc: ") + error.what() + "; see 'docc --help'\n";
    });
    std::string dumped;
    app.add_option("--dump", dumped, "The same as the command dump")->type_name("FILE");

    brt::CompileRequest compile;
    CLI::App& compileCommand = *app.add_subcommand("compile", "Compile the text of a document");
    compileCommand.add_option("input", compile.input, "The text, XML")->required()->type_name("FILE");
    compileCommand.add_option("-o,--output", compile.output, "The compiled document")->required()->type_name("FILE");
    compileCommand
        .add_option("--shared", compile.sharedDocument, "The compiled shared document, for \"shared::\" paths")
        ->type_name("FILE");
    compileCommand.add_option("--resources", compile.resourceList, "The list of resources, to check their names by")
        ->type_name("LIST");
    compileCommand.footer(kCompileHelp);

    CLI::App& dumpCommand = *app.add_subcommand("dump", "Print a compiled document as text");
    dumpCommand.add_option("input", dumped, "The compiled document")->required()->type_name("FILE");
    dumpCommand.footer("The text compiles to the same bytes.\n\nExample:\n  docc dump SharedData.bin");

    brt::ResourcesRequest resources;
    CLI::App& resourcesCommand = *app.add_subcommand("resources", "Make the table of files that are linked in");
    resourcesCommand.add_option("list", resources.list, "Lines of \"name = file\"")->required()->type_name("LIST");
    resourcesCommand.add_option("-o,--output", resources.output, "The table, for the assembler")
        ->required()
        ->type_name("FILE.S");
    resourcesCommand.add_option("--symbol", resources.symbol, "The table's C name (kHalyardResources)")
        ->type_name("NAME");
    resourcesCommand.footer("Example:\n  docc resources resources.txt -o Resources.S");

    brt::PresetsRequest presets;
    CLI::App& presetsCommand = *app.add_subcommand("presets", "Compile the text of presets");
    presetsCommand.add_option("input", presets.input, "The text")->required()->type_name("FILE");
    presetsCommand.add_option("-o,--output", presets.output, "A bank file, or a list of banks for the settings")
        ->required()
        ->type_name("FILE");
    presetsCommand.add_option("--shared", presets.sharedDocument, "The compiled shared document, with the definitions")
        ->required()
        ->type_name("FILE");
    presetsCommand.footer(
        "Tools/Docc/PresetText.h shows the form of the text.\n\n"
        "Example:\n  docc presets Factory.presets -o FactoryROM.cbf --shared SharedData.bin");

    try {
        app.parse(argumentCount, arguments);
        if (app.get_subcommands().empty() && dumped.empty()) throw CLI::CallForHelp();
        if (!app.get_subcommands().empty() && app.count("--dump") > 0)
            throw CLI::ExcludesError("--dump", app.get_subcommands().front()->get_name());
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    if (compileCommand.parsed()) {
        // Paths are followed in trees of plain objects; the classes themselves stay out of the application.
        brt::CApplication::start({{}, nullptr, ""});
        return brt::runCompile(compile, brt::productTags());
    }
    if (presetsCommand.parsed()) {
        const brt::CString shared = brt::CString::fromPath(brt::pathFromSystem(presets.sharedDocument));
        brt::CApplication::start({brt::productTags(), nullptr, shared});
        return brt::runPresets(presets);
    }
    return resourcesCommand.parsed() ? brt::runResources(resources) : brt::runDump(dumped);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        const brt::CProcessInstance instance;
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        const std::string text = error.what();
        const bool hasPlace = text.find(": error: ") != std::string::npos;
        std::fprintf(stderr, "%s%s\n", hasPlace ? "" : "docc: error: ", text.c_str());
        return 1;
    }
}

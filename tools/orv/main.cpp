#include "core/ZCoreLib.h"
#include "tools/orv/command.h"

int main(int argc, char** argv) {
    CLI::App app{"The companion of orvcore."};
    app.name("orv");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("orv ") + ZCoreLib::versionToken());
    app.footer("Exit status: 0 done, 1 something failed, 2 the call can't be understood.");
    int exit = orv::tool::Done;
    orv::tool::addPackages(app, exit);
    orv::tool::addTypes(app, exit);
    orv::tool::addWords(app, exit);
    auto commands = [&](const char* name) {
        return app.get_subcommands([&](CLI::App* command) { return command->get_name() == name; });
    };
    if (argc > 1 && argv[1][0] != '-' && commands(argv[1]).empty()) {
        std::fprintf(stderr, "orv: unknown command \"%s\"; orv --help lists them\n", argv[1]);
        return orv::tool::Usage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) { // --help, --version
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return orv::tool::Usage;
    }
    return exit;
}

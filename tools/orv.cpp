// The orv command: a front door to the library for people at a terminal.

#include "Convert.h"

#include <orv/utils/Facilities.h>
#include <orv/utils/OstreamLogger.h>
#include <orv/utils/Platforms.h>
#include <orv/utils/Property.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/System.h>
#include <orv/utils/Type.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/Uuid.h>
#include <orv/utils/c/System.h>

#include <cstring>
#include <iostream>

namespace {

const char* const usage =
    "usage: orv <command> [options]\n"
    "\n"
    "commands:\n"
    "  info        initialize the library and print its version, platform and facilities\n"
    "  convert     convert a dynamic object between JSON and Protocol Buffers text\n"
    "\n"
    "options:\n"
    "  -h, --help     show this help and exit\n"
    "  --version      print the library version and exit\n";

int runInfo()
{
    orv::utils::OstreamLogger logger(&std::cerr, &std::cerr, nullptr, nullptr);
    if (!orv::utils::initialize(&logger)) {
        std::cerr << "orv: the library failed to initialize" << std::endl;
        return 1;
    }
    std::cout << "orv_utils " << orv_utils_getVersionStr() << "\n";
    std::cout << "platform: " << orv::utils::platform::toString(orv::utils::getCurrentPlatform()) << " ("
              << orv::utils::getCurrentPlatform() << ")\n";
    orv::utils::Facilities& facilities = orv::utils::Facilities::instance();
    std::cout << "facilities:\n";
    std::cout << "  logger: default (errors to stderr, other levels to stdout)\n";
    std::cout << "  string table: seed 7687\n";
    std::cout << "  random manager: master seed " << facilities.getRandomNumberGenerator().getSeed() << "\n";
    const orv::utils::TypeManager& types = facilities.getTypeManager();
    const auto ids = types.getTypeIds();
    std::cout << "  type manager: " << ids.size() << " registered types\n";
    for (const orv::utils::Uuid& id : ids) {
        const char* kind = orv::utils::toString(types.getType(id));
        std::cout << "    " << id << "  " << types.getTypeName(id) << " (" << (kind ? kind : "?");
        const unsigned int count = types.countProperties(id);
        for (unsigned int i = 0; i < count; ++i) {
            std::cout << (i == 0 ? ": " : ", ") << types.getProperty(id, i).getKey();
        }
        std::cout << ")\n";
    }
    orv::utils::terminate(&logger);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << usage;
        return 2;
    }
    const char* command = argv[1];
    if (std::strcmp(command, "-h") == 0 || std::strcmp(command, "--help") == 0 || std::strcmp(command, "help") == 0) {
        std::cout << usage;
        return 0;
    }
    if (std::strcmp(command, "--version") == 0) {
        std::cout << "orv " << orv_utils_getVersionStr() << std::endl;
        return 0;
    }
    if (std::strcmp(command, "info") == 0) {
        return runInfo();
    }
    if (std::strcmp(command, "convert") == 0) {
        return orv::tools::runConvert(argc - 2, argv + 2);
    }
    std::cerr << "orv: unknown command '" << command << "'\n\n" << usage;
    return 2;
}

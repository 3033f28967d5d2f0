// orv convert: between the JSON form and the Protocol Buffers text form of a dynamic object.

#include "Convert.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectSerialization.h>
#include <orv/utils/JsonDeserializer.h>
#include <orv/utils/JsonSerializer.h>
#include <orv/utils/OstreamLogger.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {
namespace tools {

const char* const convertUsage =
    "usage: orv convert [--from json|protobuf] [--to json|protobuf] [--pretty] <input> <output>\n"
    "\n"
    "Converts a dynamic object between its JSON form and its Protocol Buffers text form.\n"
    "<input> and <output> are file paths, or - for standard input and standard output.\n"
    "\n"
    "  --from FORMAT   the input's form; by default guessed from its first character\n"
    "                  ('{' or '[' is JSON, anything else the Protocol Buffers text form)\n"
    "  --to FORMAT     the output's form; by default the other one\n"
    "  --pretty        indent JSON output\n"
    "  -h, --help      show this help\n"
    "\n"
    "A file output is written to a temporary file beside it and renamed into place only when\n"
    "the whole conversion succeeded, so a failed run never leaves a half-written file behind.\n"
    "Errors go to standard error; the exit status is 0 on success, 1 when the conversion\n"
    "fails and 2 for bad usage.\n";

namespace {

enum class Format { unknown, json, protobuf };

Format parseFormat(const char* text)
{
    if (std::strcmp(text, "json") == 0) {
        return Format::json;
    }
    if (std::strcmp(text, "protobuf") == 0 || std::strcmp(text, "proto") == 0) {
        return Format::protobuf;
    }
    return Format::unknown;
}

bool readAll(const std::string& path, std::string& bytes)
{
    if (path == "-") {
        bytes.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
        return !std::cin.bad();
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        std::cerr << "orv convert: cannot open '" << path << "': " << std::strerror(errno) << "\n";
        return false;
    }
    char chunk[65536];
    std::size_t count = 0;
    while ((count = std::fread(chunk, 1, sizeof(chunk), file)) > 0) {
        bytes.append(chunk, count);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        std::cerr << "orv convert: cannot read '" << path << "'\n";
    }
    return !failed;
}

// Writes to a temporary file in the target's folder and renames it over the target, so that the
// target is either the old file or the whole new one.
bool writeAll(const std::string& path, const char* data, std::size_t size)
{
    if (path == "-") {
        std::cout.write(data, static_cast<std::streamsize>(size));
        std::cout.flush();
        return static_cast<bool>(std::cout);
    }
    std::string temporary = path + ".XXXXXX";
    const int descriptor = mkstemp(&temporary[0]);
    if (descriptor < 0) {
        std::cerr << "orv convert: cannot create a file beside '" << path << "': " << std::strerror(errno) << "\n";
        return false;
    }
    // mkstemp makes the file private; the output gets the permissions a new file normally has.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor, 0666 & ~mask);
    std::size_t written = 0;
    while (written < size) {
        const ssize_t result = ::write(descriptor, data + written, size - written);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            break;
        }
        written += static_cast<std::size_t>(result);
    }
    const bool complete = written == size && ::fsync(descriptor) == 0;
    const bool closed = ::close(descriptor) == 0;
    if (!complete || !closed || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::cerr << "orv convert: cannot write '" << path << "': " << std::strerror(errno) << "\n";
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

Format guessFormat(const std::string& bytes)
{
    for (char c : bytes) {
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
            continue;
        }
        return (c == '{' || c == '[') ? Format::json : Format::protobuf;
    }
    return Format::json;
}

} // namespace

int runConvert(int argc, char** argv)
{
    Format from = Format::unknown;
    Format to = Format::unknown;
    bool pretty = false;
    std::string paths[2];
    int pathCount = 0;
    for (int i = 0; i < argc; ++i) {
        const char* argument = argv[i];
        if (std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "--help") == 0) {
            std::cout << convertUsage;
            return 0;
        }
        if (std::strcmp(argument, "--pretty") == 0) {
            pretty = true;
        } else if (std::strcmp(argument, "--from") == 0 || std::strcmp(argument, "--to") == 0) {
            const Format format = i + 1 < argc ? parseFormat(argv[i + 1]) : Format::unknown;
            if (format == Format::unknown) {
                std::cerr << "orv convert: " << argument << " takes json or protobuf\n\n" << convertUsage;
                return 2;
            }
            (argument[2] == 'f' ? from : to) = format;
            ++i;
        } else if (argument[0] == '-' && argument[1] != '\0') {
            std::cerr << "orv convert: unknown option '" << argument << "'\n\n" << convertUsage;
            return 2;
        } else if (pathCount < 2) {
            paths[pathCount++] = argument;
        } else {
            std::cerr << "orv convert: too many arguments\n\n" << convertUsage;
            return 2;
        }
    }
    if (pathCount != 2) {
        std::cerr << "orv convert: an input and an output are needed\n\n" << convertUsage;
        return 2;
    }

    std::string bytes;
    if (!readAll(paths[0], bytes)) {
        return 1;
    }
    if (from == Format::unknown) {
        from = guessFormat(bytes);
    }
    if (to == Format::unknown) {
        to = from == Format::json ? Format::protobuf : Format::json;
    }

    utils::OstreamLogger logger(&std::cerr, &std::cerr, nullptr, nullptr);
    utils::DynamicObject object;
    bool read = false;
    if (from == Format::json) {
        utils::BufferInput input(bytes.data(), static_cast<unsigned int>(bytes.size()));
        read = utils::deserializeDynamicObjectFromJson(object, input, &logger);
    } else {
        read = utils::deserializeDynamicObject(bytes.data(), static_cast<unsigned int>(bytes.size()), object, &logger);
    }
    if (!read) {
        std::cerr << "orv convert: '" << paths[0] << "' is not a valid "
                  << (from == Format::json ? "JSON" : "Protocol Buffers text") << " form of an object\n";
        return 1;
    }

    utils::DynamicBufferInputOutput output("orv convert output");
    bool written = false;
    if (to == Format::json) {
        utils::JsonSerializer serializer(output, pretty);
        serializer.setLogger(&logger);
        written = object.visit(serializer);
        if (written && !pretty) {
            written = output.write("\n", 1, &logger);
        }
    } else {
        written = utils::serializeDynamicObjectToProtobuf(object, output, &logger);
    }
    if (!written) {
        std::cerr << "orv convert: the object could not be written\n";
        return 1;
    }
    return writeAll(paths[1], output.data(), output.size()) ? 0 : 1;
}

} // namespace tools
} // namespace orv

#include <orv/utils/AbstractDataInputOutput.h>

#include <orv/utils/details/Logging.h>

namespace orv {
namespace utils {

AbstractDataInputOutput::~AbstractDataInputOutput() = default;

const char* AbstractDataInputOutput::getDescription() const
{
    return "no description";
}

bool AbstractDataInputOutput::peekRead(char*, unsigned int&, AbstractLogger* logger)
{
    ORV_LOG_ERROR(logger, error::invalidOperation, "'peekRead' operation is not supported by this data io.");
    return false;
}

} // namespace utils
} // namespace orv

#ifndef ORV_UTILS_DETAILS_LOGGING_H
#define ORV_UTILS_DETAILS_LOGGING_H

#include <orv/utils/AbstractLogger.h>
#include <orv/utils/Errors.h>

#include <sstream>

// Reporting helpers: each tests the logger for null, composes the text as stream output only
// when it will be written, and stamps the call's file and line.

#define ORV_LOG_ERROR(logger, errorType, text)                                                                         \
    do {                                                                                                               \
        ::orv::utils::AbstractLogger* orvLogger_ = (logger);                                                           \
        if (orvLogger_ != nullptr) {                                                                                   \
            [&]() __attribute__((noinline, cold)) {                                                                    \
                std::ostringstream orvLogStream_;                                                                      \
                orvLogStream_ << text;                                                                                 \
                orvLogger_->logError(::orv::utils::errorType, __FILE__, __LINE__, orvLogStream_.str().c_str());        \
            }();                                                                                                       \
        }                                                                                                              \
    } while (0)

#define ORV_LOG_LEVEL_(logger, test, operation, text)                                                                  \
    do {                                                                                                               \
        ::orv::utils::AbstractLogger* orvLogger_ = (logger);                                                           \
        if (orvLogger_ != nullptr && orvLogger_->test()) {                                                             \
            std::ostringstream orvLogStream_;                                                                          \
            orvLogStream_ << text;                                                                                     \
            orvLogger_->operation(__FILE__, __LINE__, orvLogStream_.str().c_str());                                    \
        }                                                                                                              \
    } while (0)

#define ORV_LOG_WARNING(logger, text) ORV_LOG_LEVEL_(logger, isLoggingWarning, logWarning, text)
#define ORV_LOG_INFO(logger, text) ORV_LOG_LEVEL_(logger, isLoggingInfo, logInfo, text)
#define ORV_LOG_TRACE(logger, text) ORV_LOG_LEVEL_(logger, isLoggingTrace, logTrace, text)

#endif

#ifndef ORV_UTILS_BUFFERLOGGER_H
#define ORV_UTILS_BUFFERLOGGER_H

#include <orv/utils/AbstractLogger.h>
#include <orv/utils/Common.h>
#include <orv/utils/ErrorType.h>

namespace orv {
namespace utils {

/// Keeps messages in order of arrival, to be read or replayed into another logger later.
/// Belongs to one thread at a time.
class ORV_UTILS_API BufferLogger : public AbstractLogger {
public:
    struct Message {
        char kind; ///< 't', 'i', 'w' or 'e'
        String file;
        unsigned int line;
        String message;
        ErrorType error; ///< for 'e'; otherwise the nil id with the caption "no error"
    };

    BufferLogger(bool warning, bool info, bool trace);
    /// Copies switches, error flag, messages, and the C record as bytes: the copy's record still
    /// points at the source, so a copy is not to be handed to C.
    BufferLogger(const BufferLogger& other);
    BufferLogger& operator=(const BufferLogger& other);

    const Vector<Message>& getMessages() const { return messages_; }

    /// Resets the error flag and erases all messages.
    void clear();
    /// Replays the messages in order into `target`, then clears this logger.
    void flush(AbstractLogger& target);

protected:
    void doLogTrace(const char* file, unsigned int line, const char* message) override;
    void doLogInfo(const char* file, unsigned int line, const char* message) override;
    void doLogWarning(const char* file, unsigned int line, const char* message) override;
    void doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message) override;

private:
    void append(char kind, const ErrorType& error, const char* file, unsigned int line, const char* message);

    Vector<Message> messages_;
};

} // namespace utils
} // namespace orv

#endif

#pragma once

#include <brevanbase/brevanbase_export.h>

#include <QLoggingCategory>
#include <QString>

class BrevanException;

/// Logging category of traces (\c vandrel.trace); failures log as warnings, details as debug lines.
BREVANBASE_EXPORT Q_DECLARE_LOGGING_CATEGORY(lcBrevanTrace)
/// Logging category of failed assertions (\c vandrel.assert), logged as critical lines.
BREVANBASE_EXPORT Q_DECLARE_LOGGING_CATEGORY(lcBrevanAssert)

/**
 * \brief What the application does with exceptions that a library caught.
 *
 * The default handler writes each exception as one warning line under \c vandrel.trace. An
 * application replaces it with ErrorHandler::SetInterface() to show or collect them.
 */
class BREVANBASE_EXPORT IErrorHandler
{
public:
    virtual ~IErrorHandler();
    /**
     * \brief Reports a caught exception to the user or the application.
     * \param exception what was caught
     * \param parent a widget or object the report belongs to, may be null
     * \param code an application code, -1 for none
     * \param log whether the report should also be logged
     * \param fatal whether the application should stop
     */
    virtual void ReportException(const BrevanException& exception, void* parent, int code, bool log,
                                 bool fatal) = 0;
    /// Writes a caught exception to the log.
    virtual void LogException(const BrevanException& exception) = 0;
};

/**
 * \brief The error services: the reporting mask and the exception handler.
 *
 * The reporting mask decides which checks and traces are made. Its bits:
 * ErrorHandler::Assertions (2) for \c _Q_assert, ErrorHandler::Failures (32) for traces of failures and
 * caught exceptions, ErrorHandler::Details (64) for detailed traces. The default mask is
 * Assertions | Failures.
 */
class BREVANBASE_EXPORT ErrorHandler
{
public:
    /// The bits of the reporting mask.
    enum ReportingBits {
        Assertions = 2, ///< check the conditions of \c _Q_assert
        Failures = 32,  ///< trace failures and caught exceptions
        Details = 64,   ///< write detailed traces
    };

    /// The one error handler of the process.
    static ErrorHandler& Instance();
    /// The exception handler in use: the application's, when it set one, otherwise the default.
    static IErrorHandler* Interface();
    /// Replaces the exception handler; null restores the default. The caller keeps ownership.
    static void SetInterface(IErrorHandler* handler);

    virtual ~ErrorHandler();
    /// The reporting mask, see the class description.
    virtual int GetReportingMask() const;
    /// Sets the reporting mask.
    void SetReportingMask(int mask);

private:
    ErrorHandler();
    int m_nReportingMask;
};

/**
 * \brief Reports a failed assertion as one critical line under \c vandrel.assert.
 *
 * Does nothing when bit 2 of the reporting mask is clear. It never ends the caller's operation.
 */
BREVANBASE_EXPORT void _Q_assert(const wchar_t* expression, const wchar_t* file, unsigned short line);

/**
 * \brief Writes one trace line under \c vandrel.trace: a warning when the Failures bit of the mask is
 * set, a debug line when only the Details bit is set, nothing otherwise.
 */
BREVANBASE_EXPORT void _Q_Trace(const QString& message, const QString& file, unsigned short line);

/// Checks \a cond when the mask asks for assertions, and reports it with its source text if it fails.
#define BREVAN_ASSERT(cond)                                                                          \
    do {                                                                                             \
        if ((ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Assertions) && !(cond))     \
            _Q_assert(L"" #cond, L"" __FILE__, static_cast<unsigned short>(__LINE__));               \
    } while (false)

/// Writes a trace of a failure when the mask asks for failures.
#define BREVAN_TRACE_FAILURE(message)                                                                \
    do {                                                                                             \
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures)                    \
            _Q_Trace((message), QStringLiteral(__FILE__), static_cast<unsigned short>(__LINE__));    \
    } while (false)

/// Writes a detailed trace when the mask asks for details.
#define BREVAN_TRACE_DETAIL(message)                                                                 \
    do {                                                                                             \
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Details)                     \
            _Q_Trace((message), QStringLiteral(__FILE__), static_cast<unsigned short>(__LINE__));    \
    } while (false)

#include <brevanbase/brevanexception.h>
#include <brevanbase/errorhandler.h>

Q_LOGGING_CATEGORY(lcBrevanTrace, "vandrel.trace", QtDebugMsg)
Q_LOGGING_CATEGORY(lcBrevanAssert, "vandrel.assert", QtDebugMsg)

namespace {

class DefaultErrorHandler final : public IErrorHandler
{
public:
    void ReportException(const BrevanException& exception, void*, int code, bool log, bool fatal) override
    {
        // A caller that logged the exception just before reports it with log set as well: one line is enough.
        if (log && &exception != m_pJustLogged)
            LogException(exception);
        m_pJustLogged = nullptr;
        if (fatal)
            qCCritical(lcBrevanTrace, "fatal exception reported (code %d): %s", code,
                       qUtf8Printable(exception.GetMessage()));
    }
    void LogException(const BrevanException& exception) override
    {
        qCWarning(lcBrevanTrace, "exception: %s", qUtf8Printable(exception.ToString()));
        m_pJustLogged = &exception;
    }

private:
    const BrevanException* m_pJustLogged = nullptr;
};

DefaultErrorHandler& defaultHandler()
{
    static DefaultErrorHandler handler;
    return handler;
}

IErrorHandler* s_pApplicationHandler = nullptr;

} // namespace

IErrorHandler::~IErrorHandler() = default;

ErrorHandler::ErrorHandler()
    : m_nReportingMask(Assertions | Failures)
{
}

ErrorHandler::~ErrorHandler() = default;

ErrorHandler& ErrorHandler::Instance()
{
    static ErrorHandler handler;
    return handler;
}

IErrorHandler* ErrorHandler::Interface()
{
    return s_pApplicationHandler ? s_pApplicationHandler : &defaultHandler();
}

void ErrorHandler::SetInterface(IErrorHandler* handler)
{
    s_pApplicationHandler = handler;
}

int ErrorHandler::GetReportingMask() const
{
    return m_nReportingMask;
}

void ErrorHandler::SetReportingMask(int mask)
{
    m_nReportingMask = mask;
}

void _Q_assert(const wchar_t* expression, const wchar_t* file, unsigned short line)
{
    if (!(ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Assertions))
        return;
    const QString expr = expression ? QString::fromWCharArray(expression) : QString();
    const QString where = file ? QString::fromWCharArray(file) : QString();
    qCCritical(lcBrevanAssert, "assertion failed: %s (%s:%u)", qUtf8Printable(expr), qUtf8Printable(where),
               unsigned(line));
}

void _Q_Trace(const QString& message, const QString& file, unsigned short line)
{
    const int mask = ErrorHandler::Instance().GetReportingMask();
    if (mask & ErrorHandler::Failures)
        qCWarning(lcBrevanTrace, "%s (%s:%u)", qUtf8Printable(message), qUtf8Printable(file), unsigned(line));
    else if (mask & ErrorHandler::Details)
        qCDebug(lcBrevanTrace, "%s (%s:%u)", qUtf8Printable(message), qUtf8Printable(file), unsigned(line));
}

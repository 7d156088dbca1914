#include <values/command.h>

#include <QtGlobal>

ORVI::ICommand::~ICommand() = default;

namespace values {

Command::Command(int commandId)
    : m_nCommandId(commandId)
{
}

Command::~Command() = default;

int Command::GetCommandId() const
{
    return m_nCommandId;
}

void Command::AddCommandString(std::string& out, int format)
{
    out += std::to_string(m_nCommandId);
    AddSemicolon(out, format);
}

void Command::AddSemicolon(std::string& out, int format)
{
    Q_UNUSED(format)
    out.push_back(';');
}

} // namespace values

#include <values/valuevector.h>

namespace values {

CheckedString::~CheckedString() = default;

QString FormatCheckedString::ToString(const CheckedString& value)
{
    return (value.GetChecked() ? QStringLiteral("1:") : QStringLiteral("0:")) + value.GetString();
}

bool FormatCheckedString::FromString(const QString& text, CheckedString& out)
{
    if (text.size() < 2 || text.at(1) != QLatin1Char(':') || (text.at(0) != QLatin1Char('0') && text.at(0) != QLatin1Char('1')))
        return false;
    out = CheckedString(text.mid(2), text.at(0) == QLatin1Char('1'));
    return true;
}

using CSVector = ValueVector<CheckedString>;

CSVector::CommandSetValue::CommandSetValue(ValueVector* value, const Vector& vector, IObserver* originator)
    : CommandOnValue(Id, value, originator)
    , m_vector(vector)
{
}

CSVector::CommandSetValue::~CommandSetValue() = default;

bool CSVector::CommandSetValue::Execute()
{
    auto* value = static_cast<ValueVector*>(m_pValue);
    return value && value->SetValue(m_vector, m_pOriginator);
}

void CSVector::CommandSetValue::AddCommandString(std::string& out, int format)
{
    CommandOnValue::AddCommandString(out, format);
    out += StreamFormat<unsigned short, FormatInt<unsigned short>>::ToStream(
        static_cast<unsigned short>(qMin<size_t>(m_vector.size(), 0xFFFF)), -1);
    AddSemicolon(out, -1);
    for (const CheckedString& element : m_vector) {
        out += StreamFormat<CheckedString, FormatCheckedString>::ToStream(element, -1);
        AddSemicolon(out, -1);
    }
}

Command* CSVector::CommandSetValue::Clone() const
{
    return new CommandSetValue(static_cast<ValueVector*>(m_pValue), m_vector, m_pOriginator);
}

CSVector::ValueVector(Vector initial)
    : m_vector(std::move(initial))
{
}

CSVector::~ValueVector()
{
    AnnounceDestruction();
}

bool CSVector::SetValue(const Vector& vector, IObserver* originator)
{
    // The undo side of the recording is the vector as it stood before the write.
    const bool record = Record();
    std::unique_ptr<Command> before;
    QString textBefore;
    if (record) {
        before = std::make_unique<CommandSetValue>(this, m_vector, nullptr);
        textBefore = GetValueString();
    }
    m_vector = vector;
    if (record)
        RecordCommand(new CommandSetValue(this, vector, originator), before.release(), textBefore);
    return Notify(ValueChanged, originator);
}

bool CSVector::SetValueFromText(const QString& text, IObserver* originator)
{
    Vector vector;
    QString element;
    bool escaped = false;
    for (const QChar c : text) {
        if (escaped) {
            element += c;
            escaped = false;
        } else if (c == QLatin1Char('\\')) {
            escaped = true;
        } else if (c == QLatin1Char(';')) {
            CheckedString cs;
            if (!FormatCheckedString::FromString(element, cs))
                return false;
            vector.push_back(cs);
            element.clear();
        } else {
            element += c;
        }
    }
    if (escaped || !element.trimmed().isEmpty())
        return false; // every element ends with ';'
    return SetValue(vector, originator);
}

QString CSVector::GetValueString() const
{
    std::string out;
    for (const CheckedString& element : m_vector) {
        out += StreamFormat<CheckedString, FormatCheckedString>::ToStream(element, -1);
        out.push_back(';');
    }
    return QString::fromStdString(out);
}

Command* CSVector::CreateRestoreCommand()
{
    return new CommandSetValue(this, m_vector, nullptr);
}

} // namespace values

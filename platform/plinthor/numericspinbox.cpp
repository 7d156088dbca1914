#include <plinthor/numericspinbox.h>

#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>

NumericSpinBox::NumericSpinBox(QWidget* parent, const char* name)
    : QSpinBox(parent)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
    setKeyboardTracking(false);
    setWrapping(false);
    installEventFilter(this);
    lineEdit()->installEventFilter(this);
}

NumericSpinBox::~NumericSpinBox() = default;

bool NumericSpinBox::eventFilter(QObject* watched, QEvent* event)
{
    if ((watched == this || watched == lineEdit()) && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && key->modifiers() == Qt::NoModifier && hasUnreadText()) {
            // Setting the number it already has makes the box write its text anew.
            setValue(value());
            return true;
        }
    }
    return QSpinBox::eventFilter(watched, event);
}

void NumericSpinBox::EnableWrapAround(bool enable)
{
    setWrapping(enable);
}

int NumericSpinBox::mapTextToValue(bool* ok)
{
    QString digits = text();
    if (!prefix().isEmpty() && digits.startsWith(prefix()))
        digits.remove(0, prefix().size());
    if (!suffix().isEmpty() && digits.endsWith(suffix()))
        digits.chop(suffix().size());
    digits = digits.trimmed();

    bool read = false;
    int number = digits.toInt(&read);
    if (!read)
        number = locale().toInt(digits, &read);
    if (ok)
        *ok = read;
    return read ? number : 0;
}

QString NumericSpinBox::mapValueToText(int value)
{
    return QSpinBox::textFromValue(value);
}

int NumericSpinBox::valueFromText(const QString&) const
{
    // The mappings read the box's own text and may act on what it stands for, hence not const.
    auto* self = const_cast<NumericSpinBox*>(this);
    bool ok = false;
    const int number = self->mapTextToValue(&ok);
    return ok ? number : value();
}

QString NumericSpinBox::textFromValue(int value) const
{
    return const_cast<NumericSpinBox*>(this)->mapValueToText(value);
}

QValidator::State NumericSpinBox::validate(QString& input, int&) const
{
    QString bare = input;
    if (!prefix().isEmpty() && bare.startsWith(prefix()))
        bare.remove(0, prefix().size());
    if (!suffix().isEmpty() && bare.endsWith(suffix()))
        bare.chop(suffix().size());
    return bare.trimmed().isEmpty() ? QValidator::Intermediate : QValidator::Acceptable;
}

bool NumericSpinBox::hasUnreadText() const
{
    return lineEdit()->isModified() && text() != prefix() + textFromValue(value()) + suffix();
}

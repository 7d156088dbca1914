#include <plinthor/coordedit.h>

#include <plinthor/plinthorapp.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>

namespace basecontrols {

CoordEdit::CoordEdit(QWidget* parent)
    : QLineEdit(parent)
    , m_fLongitude(0.0)
    , m_fLatitude(0.0)
    , m_format(GeoDecimal)
    , m_bActAsLabel(false)
    , m_bContextMenuEnabled(true)
    , m_bInputRefused(false)
    , m_bPositionPending(false)
    , m_editFocusPolicy(focusPolicy())
{
    showPosition();
    connect(this, &QLineEdit::textEdited, this, &CoordEdit::slotTextEdited);
    connect(&Plinthor::Instance(), &Plinthor::endEdit, this, &CoordEdit::slotEndEdit);
}

CoordEdit::~CoordEdit() = default;

double CoordEdit::getLongitude() const
{
    return m_fLongitude;
}

double CoordEdit::getLatitude() const
{
    return m_fLatitude;
}

CoordFormat CoordEdit::getFormat() const
{
    return m_format;
}

void CoordEdit::setLongitude(double longitude)
{
    m_fLongitude = longitude;
    if (isEditing())
        m_bPositionPending = true;
    else
        showPosition();
}

void CoordEdit::setLatitude(double latitude)
{
    m_fLatitude = latitude;
    if (isEditing())
        m_bPositionPending = true;
    else
        showPosition();
}

void CoordEdit::setFormat(CoordFormat format)
{
    if (!CoordText::IsValidFormat(format) || format == m_format)
        return;
    m_format = format;
    showPosition();
}

void CoordEdit::setActAsLabel(bool actAsLabel)
{
    if (actAsLabel == m_bActAsLabel)
        return;
    m_bActAsLabel = actAsLabel;
    if (actAsLabel) {
        m_editFocusPolicy = focusPolicy();
        setFocusPolicy(Qt::NoFocus);
        if (isModified() || m_bPositionPending)
            showPosition();
    } else {
        setFocusPolicy(m_editFocusPolicy);
    }
    setReadOnly(actAsLabel);
    setFrame(!actAsLabel);
    acceptColorChanges();
}

void CoordEdit::setContextMenuEnabled(bool enabled)
{
    m_bContextMenuEnabled = enabled;
}

QMenu* CoordEdit::createContextMenu()
{
    auto* menu = new QMenu(this);
    auto* formats = new QActionGroup(menu);
    for (int number = GeoDecimal; number <= SweRef99; ++number) {
        const auto format = CoordFormat(number);
        QAction* action = menu->addAction(CoordText::TranslatedFormatName(format));
        action->setData(number);
        action->setCheckable(true);
        action->setChecked(format == m_format);
        formats->addAction(action);
        connect(action, &QAction::triggered, this, [this, format] { setFormat(format); });
    }
    menu->addSeparator();
    QAction* copy = menu->addAction(tr("&Copy"), this, &CoordEdit::copy2Clipboard);
    copy->setEnabled(!CoordText::Format(m_fLatitude, m_fLongitude, m_format).isEmpty());
    QAction* paste = menu->addAction(tr("&Paste"), this, &CoordEdit::pasteClipboard);
    paste->setEnabled(!isReadOnly() && !QGuiApplication::clipboard()->text().trimmed().isEmpty());
    return menu;
}

void CoordEdit::acceptColorChanges()
{
    const QPalette source = parentWidget() ? parentWidget()->palette() : QApplication::palette(this);
    // Only the roles set here are the field's own; the others follow the parent as usual.
    QPalette own;
    if (m_bActAsLabel) {
        for (int group = QPalette::Active; group <= QPalette::Inactive; ++group) {
            const auto colorGroup = QPalette::ColorGroup(group);
            own.setColor(colorGroup, QPalette::Base, source.color(colorGroup, QPalette::Window));
            own.setColor(colorGroup, QPalette::Text, source.color(colorGroup, QPalette::WindowText));
        }
    }
    if (m_bInputRefused) {
        const bool darkBase = source.color(QPalette::Base).lightness() < 128;
        const QColor warning = darkBase ? QColor(255, 110, 110) : QColor(190, 0, 0);
        own.setColor(QPalette::Active, QPalette::Text, warning);
        own.setColor(QPalette::Inactive, QPalette::Text, warning);
    }
    setPalette(own);
}

void CoordEdit::copy2Clipboard()
{
    const QString text = CoordText::Format(m_fLatitude, m_fLongitude, m_format);
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void CoordEdit::pasteClipboard()
{
    if (isReadOnly())
        return;
    const QString text = QGuiApplication::clipboard()->text().simplified();
    double latitude = m_fLatitude;
    double longitude = m_fLongitude;
    if (!CoordText::Parse(text, m_format, latitude, longitude))
        return;
    setText(text);
    setModified(true);
    processLineInput();
}

void CoordEdit::processLineInput()
{
    if (!isModified()) {
        if (m_bPositionPending)
            showPosition();
        return;
    }
    double latitude = m_fLatitude;
    double longitude = m_fLongitude;
    const bool accepted = CoordText::Parse(text(), m_format, latitude, longitude);
    if (accepted) {
        m_fLatitude = latitude;
        m_fLongitude = longitude;
    }
    showPosition();
    if (accepted)
        Q_EMIT positionEdited(latitude, longitude);
}

void CoordEdit::changeEvent(QEvent* event)
{
    QLineEdit::changeEvent(event);
    // A label draws in the colours of the window it sits in.
    if (event->type() == QEvent::ParentChange && m_bActAsLabel)
        acceptColorChanges();
}

void CoordEdit::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    if (!m_bContextMenuEnabled)
        return;
    QMenu* menu = createContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void CoordEdit::focusOutEvent(QFocusEvent* event)
{
    // The field's own context menu takes the focus for a moment; the edit goes on behind it.
    if (event->reason() != Qt::PopupFocusReason) {
        // The input goes to the application, which may delete this field on it.
        const QPointer<CoordEdit> alive(this);
        processLineInput();
        if (!alive)
            return;
    }
    QLineEdit::focusOutEvent(event);
}

void CoordEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && (isModified() || m_bPositionPending)) {
        showPosition();
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        // Taken here rather than on returnPressed(): the application may delete the field on the input,
        // and Qt's line edit goes on using itself after that signal.
        const QPointer<CoordEdit> alive(this);
        processLineInput();
        if (!alive)
            return;
    }
    QLineEdit::keyPressEvent(event);
}

void CoordEdit::slotTextEdited(const QString& text)
{
    double latitude = 0;
    double longitude = 0;
    const bool refused = !text.trimmed().isEmpty() && !CoordText::Parse(text, m_format, latitude, longitude);
    if (refused != m_bInputRefused) {
        m_bInputRefused = refused;
        acceptColorChanges();
    }
}

void CoordEdit::slotEndEdit(QWidget* widget)
{
    if (!widget || widget == this || widget->isAncestorOf(this))
        processLineInput();
}

void CoordEdit::showPosition()
{
    m_bPositionPending = false;
    setText(CoordText::Format(m_fLatitude, m_fLongitude, m_format));
    if (!hasFocus())
        setCursorPosition(0);
    if (m_bInputRefused) {
        m_bInputRefused = false;
        acceptColorChanges();
    }
}

bool CoordEdit::isEditing() const
{
    return hasFocus() && isModified();
}

} // namespace basecontrols

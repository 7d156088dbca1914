#pragma once

#include <plinthor/plinthor_export.h>

#include <QObject>
#include <QPointer>
#include <QString>

class QCoreApplication;
class QWidget;

namespace values {
class ValueSelection;
}

/**
 * \brief The base controls' link to the application: its position format and its colours.
 *
 * One object per process, made on first use and never destroyed. All calls belong on the thread of the
 * widgets.
 */
class PLINTHOR_EXPORT Plinthor : public QObject
{
    Q_OBJECT

public:
    /// The one object of the process. It starts watching the application's palette once a
    /// QCoreApplication exists.
    static Plinthor& Instance();

    /**
     * \brief The application's position format: a values::ValueSelection in the value tree whose seven
     * items have the keys and numbers 0 to 6 of CoordFormat, named as CoordText::FormatName() gives
     * them (translation namespace "Plinthor"), decimal degrees current at first.
     *
     * It stands at PositionFormatPath(). Never null: when the tree lost it (Tree::Clear(),
     * Tree::Remove()), this call puts a new one in; when the application holds a value of another kind
     * at that path, the selection goes to a path of its own below "/.unique/".
     */
    values::ValueSelection* GetPositionFormat();
    /// Where GetPositionFormat() puts the selection: "/plinthor/positionFormat".
    static QString PositionFormatPath();

    /// Sends endEdit(\a widget): asks \a widget to finish its current edit.
    void EndEdit(QWidget* widget);

Q_SIGNALS:
    /**
     * \brief The application's palette changed; controls that draw in their own colours take up the
     * new ones.
     *
     * Sent from the event loop once the change has reached every widget, so that widget palettes read
     * in its slots are the new ones. Changes made in one go are announced once.
     */
    void signalColorsChanged();
    /**
     * \brief Asks \a widget to finish its current edit, as if its user had pressed Return.
     *
     * Editors that follow this signal answer when they are \a widget or lie inside it; a null \a widget
     * asks every one of them.
     */
    void endEdit(QWidget* widget);

protected:
    /// Reimplemented to send signalColorsChanged() once the widgets have taken up a new application palette.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Plinthor();
    ~Plinthor() override;
    Plinthor(const Plinthor&) = delete;
    Plinthor& operator=(const Plinthor&) = delete;

    void watchApplication();

    QString m_strPositionFormatPath;
    QPointer<QCoreApplication> m_pWatchedApplication;
    bool m_bColorsChangePending;
};

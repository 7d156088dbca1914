#pragma once

#include <values/observable.h>

#include <QLabel>

#include <functional>

namespace values {
class ValueBase;
}

/**
 * \brief Paints a label's text on one line, cut with an ellipsis where it does not fit, and offers the
 * whole text as the label's tool-tip while it is cut: a long text must not move the layout around it.
 */
class OneLineText
{
public:
    void paint(QLabel* label);

private:
    QString m_strOwnTip;  // the label's own tool-tip, shown again once the text fits
    QString m_strTextTip; // the tool-tip set here, to tell it from one set from outside
};

/**
 * \brief A label that shows a value of the tree as text and follows it.
 *
 * Bound, it shows the formatter's text of the value and greys out while the value is disabled; once
 * the value is removed it lets go of it and shows a greyed dash until it is bound again. Its size
 * does not follow the text: a text too long for it is cut, and the tool-tip shows all of it.
 */
class ValueReadout : public QLabel, public IObserver
{
    Q_OBJECT

public:
    using Formatter = std::function<QString(values::ValueBase&)>;

    /// Without a formatter the readout shows GetValueString().
    explicit ValueReadout(Formatter formatter = Formatter(), QWidget* parent = nullptr);
    ~ValueReadout() override;

    /// Binds to the value at \a path; false (and unbound) when there is none.
    bool bind(const QString& path);
    bool isBound() const { return m_pValue != nullptr; }

    void Update(Observable* source, TChangeCode code) override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void release();
    void refresh();
    void showUnbound();

    Formatter m_format;
    values::ValueBase* m_pValue = nullptr;
    OneLineText m_oneLine;
};

#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>

/// What Designer shows of one control, and how it makes one.
struct ControlDescription
{
    QString className;
    QString toolTip;
    QString whatsThis;
    QSize size;
    QString glyph; // the few letters its icon carries
    std::function<QWidget*(QWidget* parent)> create;
};

/// One control in Designer's widget box, in the group "Vandrel".
class VandrelWidget : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    VandrelWidget(ControlDescription description, QObject* parent);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget* createWidget(QWidget* parent) override;
    bool isInitialized() const override;
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;

private:
    ControlDescription m_description;
    bool m_bInitialized = false;
};

/// The plugin: every control of the library.
class VandrelWidgets : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit VandrelWidgets(QObject* parent = nullptr);

    QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    QList<QDesignerCustomWidgetInterface*> m_widgets;
};

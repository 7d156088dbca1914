/*
 * A page drawn in Designer (scanform.ui) and bound by vandrel::BindForm() alone: the form names each
 * control's value in its `valuePath` property. Qt's QUiLoader makes the controls through the library's
 * Designer plugin, which the gallery finds beside its build (or installed).
 */
#include "gallerywindow.h"

#include <vandrel/bindform.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QUiLoader>
#include <QVBoxLayout>

QWidget* GalleryWindow::makeFormPage()
{
    QVBoxLayout* layout = newPageLayout(
        tr("This page is a form drawn in Qt Designer. Its controls came from the library's Designer plugin and were "
           "bound by their valuePath properties with one call, vandrel::BindForm(); the page has no other code."));
    QWidget* page = layout->parentWidget();

    // The form lives in the gallery's static library, whose resources are not registered on their own.
    Q_INIT_RESOURCE(gallery);
    QUiLoader loader;
    loader.addPluginPath(QStringLiteral(VANDREL_BUILD_DESIGNER_PLUGINS));
    loader.addPluginPath(QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QStringLiteral(VANDREL_INSTALLED_DESIGNER_PLUGINS)));
    QFile file(QStringLiteral(":/gallery/scanform.ui"));
    file.open(QFile::ReadOnly);
    QWidget* form = loader.load(&file, page);
    auto* report = new QLabel(page);
    report->setObjectName(QStringLiteral("formReport"));
    report->setWordWrap(true);
    if (!form) {
        report->setText(tr("The form could not be loaded: %1").arg(loader.errorString()));
        layout->addWidget(report);
        layout->addStretch(1);
        return page;
    }
    form->setObjectName(QStringLiteral("scanForm"));
    layout->addWidget(form, 1);
    layout->addWidget(report);
    bind([form, report] {
        const vandrel::BindFormResult result = vandrel::BindForm(form);
        QString text = tr("Bindings made from the form: %1.").arg(result.bound.size());
        if (!result.failed.isEmpty())
            text += QLatin1Char(' ') + tr("Not bound: %1").arg(result.failed.join(QStringLiteral("; ")));
        report->setText(text);
    });
    return page;
}

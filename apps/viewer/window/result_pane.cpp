// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/result_pane.h"

#include "terminal/errors.h"
#include "viewer/widgets/image_saver.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/style.h"

#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include <algorithm>

namespace tesmor::apps {

namespace {

const char* const FOLDER_KEY = "folder";

// Qt's own reads the beginning of each file on the window's thread, which lasts forever for some.
class PlainFileIcons : public QFileIconProvider {
public:
    using QFileIconProvider::icon;

    QIcon icon(const QFileInfo& info) const override
    {
        return icon(info.isDir() ? Folder : File);
    }

    QString type(const QFileInfo&) const override
    {
        return {};
    }
};

// The very same, not equal ones.
bool areSame(const QList<QImage>& images, const QList<QImage>& others)
{
    return std::ranges::equal(images, others, {}, &QImage::cacheKey, &QImage::cacheKey);
}

QPushButton* makeButton(const QString& name, const QString& icon, const QString& text)
{
    auto* button = new QPushButton(themedIcon(icon), text);
    button->setObjectName(name);
    return button;
}

} // namespace

ResultPane::ResultPane(QSettings& settings, QWidget* parent)
    : QWidget(parent), settings_(settings), icons_(std::make_unique<PlainFileIcons>()), view_(new ResultView),
      controls_(new QWidget), saveResult_(makeButton("saveResult", "save", tr("Save …"))),
      saveSlices_(makeButton("saveSlices", "save", tr("Save slices …")))
{
    saveResult_->setToolTip(tr("Save the fused image as PNG or TIFF (Ctrl+S)"));
    saveSlices_->setToolTip(tr("Save the slices as one TIFF of several pages (Ctrl+Shift+S)"));
    auto* close = makeButton("closeResult", "close", tr("Close"));
    close->setToolTip(tr("Put the result away; E shows it again"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(saveResult_);
    buttons->addWidget(saveSlices_);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    auto* rows = new QVBoxLayout(controls_);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(view_->controls());
    rows->addLayout(buttons);
    connect(saveResult_, &QPushButton::clicked, this, &ResultPane::saveResult);
    connect(saveSlices_, &QPushButton::clicked, this, &ResultPane::saveSlices);
    connect(close, &QPushButton::clicked, this, &ResultPane::closed);
}

ResultPane::~ResultPane() = default;

void ResultPane::setImages(const QImage& result, const QList<QImage>& slices)
{
    if (!areSame(slices, view_->slices()))
        slices_ = {!slices.isEmpty(), slices_.version + 1};
    if (!areSame({result}, {view_->result()}))
        result_ = {!result.isNull(), result_.version + 1};
    view_->setImages(result, slices);
    saveResult_->setEnabled(!result.isNull());
    saveSlices_->setEnabled(!slices.isEmpty());
    emit changed();
}

void ResultPane::forgetImages()
{
    setImages({}, {});
}

void ResultPane::setMicrometresPerPixel(double micrometres)
{
    micrometresPerPixel_ = micrometres;
    view_->setMicrometresPerPixel(micrometres);
}

void ResultPane::save()
{
    if (result_.isUnsaved)
        saveResult();
    else
        saveSlices();
}

void ResultPane::saveAgain()
{
    if (failed_ == &slices_)
        saveSlices();
    else
        saveResult();
}

void ResultPane::saveResult()
{
    if (view_->result().isNull())
        return;
    askForFile(tr("Save the fused image"), resultFilters(), tr("fused.png"), result_,
               [image = view_->result(), size = micrometresPerPixel_](const QString& file) {
                   apps::saveResult(file, image, size);
               });
}

void ResultPane::saveSlices()
{
    if (view_->slices().isEmpty())
        return;
    askForFile(tr("Save the slices"), slicesFilters(), tr("slices.tif"), slices_,
               [slices = view_->slices(), size = micrometresPerPixel_](const QString& file) {
                   apps::saveSlices(file, slices, size);
               });
}

void ResultPane::askForFile(const QString& title, const QString& filters, const QString& name, Saved& what,
                            const Writer& write)
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString folder = settings_.value(FOLDER_KEY, pictures).toString();
    auto* dialog = new QFileDialog(this, title, QFileInfo(folder).isDir() ? folder : QDir::homePath(), filters);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setIconProvider(icons_.get());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QFileInfo(name).suffix());
    dialog->selectFile(QFileInfo(name).completeBaseName());
    connect(dialog, &QFileDialog::filterSelected, dialog,
            [dialog](const QString& filter) { dialog->setDefaultSuffix(filter.contains("*.png") ? "png" : "tif"); });
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, &what, version = what.version, write](const QString& file) {
                settings_.setValue(FOLDER_KEY, QFileInfo(file).path());
                writeFile(file, what, version, write);
            });
    connect(dialog, &QFileDialog::rejected, this, &ResultPane::notSaved);
    dialog->open();
}

void ResultPane::writeFile(const QString& file, Saved& what, int version, const Writer& write)
{
    writer_.post([this, &what, version, file, write] {
        QString failure;
        try {
            write(file);
        } catch (const std::exception& error) {
            failure = QString::fromUtf8(error.what());
        }
        QMetaObject::invokeMethod(
            this, [this, &what, version, file, failure] { finishWriting(what, version, file, failure); },
            Qt::QueuedConnection);
    });
}

void ResultPane::finishWriting(Saved& what, int version, const QString& file, const QString& failure)
{
    if (!failure.isEmpty()) {
        failed_ = &what;
        emit notSaved();
        emit told({Severity::ERROR, "save", tr("Not saved: %1.").arg(failure), {}, tr("Save as …")});
    } else {
        if (version == what.version)
            what.isUnsaved = false;
        emit saved(file);
    }
    emit changed();
}

} // namespace tesmor::apps

#include "shell/kit/file_boxes.h"

#include <algorithm>
#include <stdexcept>

#include <QCollator>
#include <QDir>
#include <QFileInfo>

namespace kit {
namespace {

QString cleanFolder(const QString& path) {
    return QDir::cleanPath(QDir::fromNativeSeparators(path));
}

// Sorted as the platform's list boxes sort names: without regard to case.
void sortNames(QStringList& names) {
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), collator);
}

}  // namespace

DriveListBox::DriveListBox(QWidget* parent) : QComboBox(parent) {
    for (const QFileInfo& drive : QDir::drives())
        addItem(drive.absoluteFilePath());
    connect(this, &QComboBox::activated, this, [this] { emit Change(); });
}

void DriveListBox::setDrive(const QString& path) {
    const QString folder = cleanFolder(path);
    int found = 0;
    for (int index = 0; index < count(); ++index) {
        if (folder.startsWith(itemText(index), Qt::CaseInsensitive))
            found = index;
    }
    setCurrentIndex(found);
    emit Change();
}

DirListBox::DirListBox(QWidget* parent) : QListWidget(parent) {
    connect(this, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { setPath(item->data(Qt::UserRole).toString()); });
}

void DirListBox::setPath(const QString& path) {
    const QString folder = cleanFolder(QFileInfo(cleanFolder(path)).absoluteFilePath());
    if (!QFileInfo(folder).isDir())
        throw std::runtime_error("Path not found: " + folder.toStdString());
    if (folder == path_)
        return;
    path_ = folder;
    fill();
    emit Change();
}

void DirListBox::fill() {
    clear();
    QStringList way;
    for (QDir up(path_);;) {
        way.prepend(up.absolutePath());
        if (!up.cdUp())
            break;
    }
    int depth = 0;
    for (const QString& folder : way) {
        const QString name = depth == 0 ? folder : QDir(folder).dirName();
        auto* item = new QListWidgetItem(QString(depth * 2, u' ') + name, this);
        item->setData(Qt::UserRole, folder);
        ++depth;
    }
    setCurrentRow(count() - 1);
    QStringList subfolders = QDir(path_).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    sortNames(subfolders);
    for (const QString& name : subfolders) {
        auto* item = new QListWidgetItem(QString(depth * 2, u' ') + name, this);
        item->setData(Qt::UserRole, QDir(path_).filePath(name));
    }
}

FileListBox::FileListBox(const QString& pattern, QWidget* parent)
    : QListWidget(parent), pattern_(pattern) {
    connect(this, &QListWidget::itemClicked, this, [this] { emit Click(); });
}

void FileListBox::setPath(const QString& path) {
    path_ = cleanFolder(path);
    Refresh();
}

void FileListBox::Refresh() {
    clear();
    QDir folder(path_);
    folder.setNameFilters(pattern_.split(u';', Qt::SkipEmptyParts));
    folder.setFilter(QDir::Files);  // name filters match without regard to case
    QStringList names = folder.entryList();
    sortNames(names);
    addItems(names);
}

QString FileListBox::FileName() const {
    const QListWidgetItem* item = currentItem();
    return item ? item->text() : QString();
}

void FileListBox::setListIndex(int index) {
    setCurrentRow(index);
    emit Click();
}

}  // namespace kit

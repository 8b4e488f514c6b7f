#pragma once

#include <QComboBox>
#include <QListWidget>
#include <QString>
#include <QStringList>

namespace kit {

// The drive, folder and file list boxes of the original's windows, over the
// platform's own file system. Paths are written with "/" and compare as the
// platform compares them; a folder's path never ends in "/" except a root.

// The drives: the file system's roots ("/" alone on most systems).
class DriveListBox : public QComboBox {
    Q_OBJECT
public:
    explicit DriveListBox(QWidget* parent = nullptr);
    QString Drive() const { return currentText(); }
    // The drive of a path, or of the root when none fits; emits Change.
    void setDrive(const QString& path);

signals:
    void Change();
};

// A folder and the way to it: the folders from the root down to the
// present one, then its subfolders, sorted by name. Double-clicking (or
// Enter on) an entry makes it the present folder.
class DirListBox : public QListWidget {
    Q_OBJECT
public:
    explicit DirListBox(QWidget* parent = nullptr);
    QString Path() const { return path_; }
    // Emits Change when the folder is another. A folder that does not
    // exist is refused with std::runtime_error (the original's "Path not
    // found").
    void setPath(const QString& path);

signals:
    void Change();

private:
    void fill();
    QString path_;
};

// The files of a folder whose names fit the pattern ("*.xls",
// "*.jpeg;*.jpg"), matched without regard to case, sorted by name.
class FileListBox : public QListWidget {
    Q_OBJECT
public:
    explicit FileListBox(const QString& pattern, QWidget* parent = nullptr);
    QString Path() const { return path_; }
    void setPath(const QString& path);
    QString Pattern() const { return pattern_; }
    // The chosen file's name, empty without one.
    QString FileName() const;
    int ListCount() const { return count(); }
    int ListIndex() const { return currentRow(); }
    // Chooses a file by code; runs Click as a user's choice does.
    void setListIndex(int index);
    // Reads the folder again.
    void Refresh();

signals:
    void Click();

private:
    QString path_;
    QString pattern_;
};

}  // namespace kit

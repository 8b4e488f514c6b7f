#pragma once

#include <stdexcept>

#include <QImage>
#include <QString>

namespace engine {

// The original's LoadPicture: the picture in the file, or a null picture
// for an empty path. Throws PictureError for a file that is missing or is
// no picture. Pictures loaded again from an unchanged file are shared, so a
// background printed on every card is held once.
QImage LoadPicture(const QString& path);

class PictureError : public std::runtime_error {
public:
    PictureError(int number, const char* description)
        : std::runtime_error(description), number_(number) {}
    int number() const { return number_; }  // 53 file not found, 481 invalid picture

private:
    int number_;
};

}  // namespace engine

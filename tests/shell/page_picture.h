#pragma once

#include <QImage>
#include <QWidget>

namespace windows::testing {

// The window as a person would see it: its controls grabbed, with the page
// of each visible browser in it painted in its place. Without a graphics
// card the offscreen platform leaves a browser grey in a grab, so each page
// is printed at its view's size and turned into a picture by pdftoppm.
QImage windowPicture(QWidget& window);

}  // namespace windows::testing

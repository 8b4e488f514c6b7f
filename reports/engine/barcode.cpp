#include "reports/engine/barcode.h"

#include <exception>

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

namespace engine {

std::vector<bool> code128Modules(const QString& text) {
    std::vector<bool> modules;
    try {
        ZXing::MultiFormatWriter writer(ZXing::BarcodeFormat::Code128);
        writer.setMargin(0);
        // A width of 0 makes the encoder answer with the symbol's own width,
        // one matrix column for each module.
        const ZXing::BitMatrix matrix = writer.encode(text.toStdWString(), 0, 1);
        modules.reserve(matrix.width());
        for (int x = 0; x < matrix.width(); ++x)
            modules.push_back(matrix.get(x, 0));
    } catch (const std::exception&) {
        // Empty, over 80 characters, or a character outside the symbol's
        // set: there is no symbol to draw.
        modules.clear();
    }
    return modules;
}

}  // namespace engine

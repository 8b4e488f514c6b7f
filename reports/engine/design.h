#pragma once

#include <QString>

#include "reports/engine/report_definition.h"

namespace engine {

// Controls as a report's design lists them: name, left, top, width, height
// in twips, then what the control shows.
inline Control label(const QString& name, Box box, const QString& caption, TextStyle style = {}) {
    Control control;
    control.kind = ControlKind::Label;
    control.name = name;
    control.box = box;
    control.Caption = caption;
    control.style = style;
    return control;
}

// A field bound to a column, or, with an empty column, showing what code
// sets as its Text (the design text until then).
inline Control field(const QString& name, Box box, const QString& dataField,
                     const QString& designText = QString(), TextStyle style = {}) {
    Control control;
    control.kind = ControlKind::Field;
    control.name = name;
    control.box = box;
    control.DataField = dataField;
    control.Text = designText;
    control.style = style;
    return control;
}

inline Control picture(const QString& name, Box box) {
    Control control;
    control.kind = ControlKind::Picture;
    control.name = name;
    control.box = box;
    return control;
}

inline Control barcode(const QString& name, Box box, const QString& dataField) {
    Control control;
    control.kind = ControlKind::Barcode;
    control.name = name;
    control.box = box;
    control.DataField = dataField;
    return control;
}

inline Control withBorder(Control control) {
    control.border = true;
    return control;
}

}  // namespace engine

#pragma once

#include <QString>

#include "reports/engine/report_definition.h"

namespace engine {

// Controls as a report's design lists them: name, left, top, width, height
// in twips, then what the control shows.
inline Control control(ControlKind kind, const QString& name, Box box) {
    Control made;
    made.kind = kind;
    made.name = name;
    made.box = box;
    return made;
}

inline Control label(const QString& name, Box box, const QString& caption, TextStyle style = {}) {
    Control made = control(ControlKind::Label, name, box);
    made.Caption = caption;
    made.style = style;
    return made;
}

// A field bound to a column, or, with an empty column, showing what code
// sets as its Text (the design text until then).
inline Control field(const QString& name, Box box, const QString& dataField = QString(),
                     const QString& designText = QString(), TextStyle style = {}) {
    Control made = control(ControlKind::Field, name, box);
    made.DataField = dataField;
    made.Text = designText;
    made.style = style;
    return made;
}

inline Control picture(const QString& name, Box box) {
    return control(ControlKind::Picture, name, box);
}

inline Control barcode(const QString& name, Box box, const QString& dataField) {
    Control made = control(ControlKind::Barcode, name, box);
    made.DataField = dataField;
    return made;
}

inline Control withBorder(Control control) {
    control.border = true;
    return control;
}

}  // namespace engine

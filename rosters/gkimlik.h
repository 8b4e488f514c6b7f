#pragma once

#include <QDate>
#include <QObject>
#include <QPointer>
#include <QString>

#include "reports/engine/report.h"

namespace rosters {

// The day students' identity cards ("Gunduzlu_kimlik"): three cards across a
// landscape page, each the card background with the student's photograph,
// class, number and name, and a Code 128 barcode of the identity number
// that the gate's reader scans. The class comes from kimlik's Combo1.
class gkimlik : public engine::Report {
    Q_OBJECT
public:
    explicit gkimlik(QObject* parent = nullptr);

    void ActiveReport_Initialize() override;
    void Detail_Format() override;
    void ActiveReport_ToolbarClick(const QString& toolCaption) override;
    void ActiveReport_QueryClose(int& cancel, int closeMode) override;

    // Runs the report held by the reference to its end and writes its pages
    // into the PDF of the day beside the program's folder; the reference is
    // cleared (and the report deleted) when the export went through.
    static void pdf(QPointer<gkimlik>& pdf_obj);
};

// The caption of the tool that exports the cards, as the window adds it.
inline const QString kPdfTool = QStringLiteral("Pdf kaydet");

// The PDF's path for the day: the program's folder glued to the date and
// "Gunduzlu_kimlik", with no separator between them, so the file lands
// beside the folder and its name begins with the folder's name.
QString cardPdfPath(QDate day);

// The class the cards are printed for: kimlik's Combo1 when the window is
// loaded; a run without the window (the print-report tool) sets it.
QString cardClass();
void setCardClassWithoutWindow(const QString& chosen);

}  // namespace rosters

#include "rosters/boarder_filters.h"

#include "shell/kit/vb_number.h"

namespace rosters {
namespace {

QString sexCondition(Sex sex) {
    return sex == Sex::Girls ? QStringLiteral(" CINSIYET= 'K'") : QStringLiteral(" CINSIYET= 'E'");
}

// The runtime's Trim: blanks only, at both ends.
QString trimBlanks(const QString& text) {
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start);
}

QString prefixFragment(const QString& column, const QString& typed) {
    if (typed.isEmpty())
        return {};
    return QLatin1Char(' ') + column + QStringLiteral(" like '") + trimBlanks(typed) +
           QStringLiteral("%'");
}

}  // namespace

QString roomFragment(const QString& room) {
    if (room.isEmpty() || room == QStringLiteral("Tümü"))
        return {};
    return QStringLiteral(" A_Ogr_Oda_No =") + kit::plainNumber(kit::Val(room));
}

QString firstNameFragment(const QString& name) {
    return prefixFragment(QStringLiteral("Adi"), name);
}

QString surnameFragment(const QString& surname) {
    return prefixFragment(QStringLiteral("SOYADI"), surname);
}

QString schoolNumberFragment(const QString& number) {
    if (number.isEmpty())
        return {};
    return QStringLiteral(" A_Ogr_Okul_No like ") + kit::plainNumber(kit::Val(number));
}

QString boarderFilter(const QString& fragment, Sex sex) {
    if (sex == Sex::All)
        return fragment;
    if (fragment.isEmpty())
        return sexCondition(sex);
    return fragment + QStringLiteral(" and ") + sexCondition(sex);
}

QString roomListQuery(Sex sex) {
    QString query =
        QStringLiteral("SELECT Pansiyon.CINSIYET, Pansiyon.A_Ogr_Oda_No") +
        QStringLiteral(" From Pansiyon GROUP BY Pansiyon.CINSIYET, Pansiyon.A_Ogr_Oda_No");
    if (sex == Sex::Girls)
        query += QStringLiteral(" HAVING Pansiyon.CINSIYET=") + QStringLiteral("'K'");
    else if (sex == Sex::Boys)
        query += QStringLiteral(" HAVING Pansiyon.CINSIYET=") + QStringLiteral("'E'");
    return query;
}

}  // namespace rosters

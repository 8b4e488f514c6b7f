#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "store/jet/database.h"
#include "store/recordset.h"

namespace reports {

// One pass of the monthly tally: the meal as the gate program writes it into
// YEMEK.ogun, and the column of TMP that receives its counts.
struct TallyPass {
    std::u16string_view meal;
    std::u16string_view column;
};
inline constexpr std::array<TallyPass, 3> kTallyPasses{{
    {u"Kahvaltı", u"sabah"},
    {u"Öğle yemeği", u"ogle"},
    {u"Akşam yemeği", u"aksam"},
}};

// TMP has a row for each day 1 to 31, whatever the month.
inline constexpr int kTallyDays = 31;

// counts[day - 1][pass]: the meals of a day and pass.
using TallyCounts = std::array<std::array<std::int32_t, kTallyPasses.size()>, kTallyDays>;

// The day students' meals of a month in YEMEK, per day 1 to 31 and pass:
// what the tally's grouped query
//   SELECT Count(yemek.gunduzlu) AS Saygunduzlu, ... GROUP BY yemek.gun,
//   yemek.ay, yemek.gunduzlu,yemek.ogun HAVING yemek.gun=<day> AND
//   yemek.ay=<month> and yemek.ogun='<meal>' AND yemek.gunduzlu=1
// counts for each day and meal, read in one pass over the table. The rows
// are those whose gun is the day, ay the month and gunduzlu 1 (compared as
// numbers, Null never equal), and whose ogun equals the meal as the SQL
// engine compares texts (sql::equalText: without regard to case, accents
// respected, so "Ogle yemegi" is no lunch). The year is not read: the same
// month of every year adds up.
// Throws jet::Error or sql::Error when YEMEK or one of its columns cannot be
// read, as each of the queries would fail.
TallyCounts countMeals(const jet::Database& database, int month);

// Writes the counts into TMP through `tmp`, an updatable record set on the
// table, as the tally's filtered updates leave it: for each day, the first
// row under the filter "tarih=<day>" (in the record set's sort) takes the
// counts of its three columns; a day without a row is skipped, and other
// rows keep what they hold. Every failing step is passed over, as the
// tally's handler passes over every failure; a day whose update fails keeps
// its row as it was. The writes become durable together in one write scope.
// The filter of `tmp` is left on the last day.
void writeTally(store::Recordset& tmp, const TallyCounts& counts);

// What the window shows as the general total: the first three fields of the
// current row of `tmp` added by position, which in TMP's column order is the
// day number plus that day's breakfasts and lunches, not a total of the
// month; the report prints it so. Empty when one of them is Null. Throws
// DataError without a current row, or for a value that is no number.
std::u16string firstRowTotal(const store::Recordset& tmp);

}  // namespace reports

#pragma once

#include <string_view>

#include "store/jet/value.h"

namespace sql {

// Order of texts as the system sorts them: the Turkish alphabet
// (a b c ç d e f g ğ h ı i j k l m n o ö p r s ş t u ü v y z, with q, w and x
// where the Latin alphabet has them), letters without regard to case under
// Turkish rules (i/İ, ı/I), accents respected (a ≠ á, each accented letter
// just after its base letter), then the rest by code unit. Digits, blanks
// and punctuation of ASCII sort before letters. <0, 0, >0.
int compareText(std::u16string_view a, std::u16string_view b);

// Equality of texts as Jet compares them in WHERE, HAVING and filters:
// without regard to case under Turkish rules, accents respected.
bool equalText(std::u16string_view a, std::u16string_view b);

// Names of tables and columns: without regard to case, with i, ı, I and İ as
// one letter (`yıl` finds `YIL`, `Adi` finds `ADI`).
bool sameName(std::u16string_view a, std::u16string_view b);

// Order for ORDER BY and Sort: Null first; numbers (integer, double,
// currency, decimal, boolean) numerically; dates by their number; texts by
// compareText; bytes bytewise; values of different kinds by kind, in that
// order. <0, 0, >0.
int compareValues(const jet::Value& a, const jet::Value& b);

}  // namespace sql

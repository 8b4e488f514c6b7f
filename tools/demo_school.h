#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/jet/value.h"

namespace demo {

using Row = std::vector<jet::Value>;

// The size of the made-up school.
struct SchoolSize {
    int students = 1000;  // day students in ORNEK
    int boarders = -1;    // boarders in Pansiyon; negative: one for every sixteen day students
    int mealDays = 90;    // school days of the meal log: one term
};

// A photograph that a row names: where it is said to be and whose it is.
struct Portrait {
    std::u16string path;  // as stored in ORNEK.resim or Pansiyon.RESIM
    std::u16string name;
    std::u16string surname;
    int number = 0;  // the school number, which also picks the colours
};

// The rows of every table of kvl.mdb for a made-up school, in each table's
// column order (the schema of the dining hall's database). Deterministic: the
// same size and picture folder give the same rows.
struct School {
    std::vector<Row> settings;   // AYAR: one row
    std::vector<Row> students;   // ORNEK
    std::vector<Row> boarders;   // Pansiyon
    std::vector<Row> permits;    // IZINLER
    std::vector<Row> meals;      // YEMEK, ID left Null for the AutoNumber
    std::vector<Row> menus;      // MENULER, four rows a day
    std::vector<Row> tally;      // TMP: 31 rows
    std::vector<Portrait> portraits;  // every photograph named above, once
};

// `pictureFolder`: where the students' photographs are said to be; the paths
// in ORNEK.resim are that folder, the system's separator and "<Numara>.jpg".
School makeSchool(const SchoolSize& size, const std::u16string& pictureFolder);

}  // namespace demo

#include "tools/demo_school.h"

#include <array>
#include <filesystem>
#include <random>

namespace demo {
namespace {

using jet::Value;

constexpr std::array kGirlNames = {
    u"Ayşe", u"Fatma", u"Zeynep", u"Elif", u"Emine", u"Hülya", u"Özlem", u"Şule", u"Gülşen",
    u"Büşra", u"İrem", u"Dilek", u"Sultan", u"Merve", u"Çiğdem", u"Nur", u"Ebru", u"Sıla"};
constexpr std::array kBoyNames = {
    u"Mehmet", u"Ali", u"Yusuf", u"Mustafa", u"Hüseyin", u"İsmail", u"Murat", u"Şükrü", u"Ömer",
    u"Emre", u"Çağrı", u"Oğuz", u"Barış", u"İbrahim", u"Uğur", u"Gökhan", u"Burak", u"Kadir"};
constexpr std::array kSurnames = {
    u"Yılmaz", u"Kaya", u"Demir", u"Şahin", u"Çelik", u"Yıldız", u"Yıldırım", u"Öztürk",
    u"Aydın", u"Özdemir", u"Arslan", u"Doğan", u"Kılıç", u"Aslan", u"Çetin", u"Kara", u"Koç",
    u"Kurt", u"Özkan", u"Şimşek", u"Işık", u"Akın", u"Ünal", u"Erdoğan", u"Güneş", u"Boz",
    u"O'Neil"};
constexpr std::array kPlaces = {u"Merkez", u"Çankaya", u"Üsküdar", u"Bağcılar", u"Şişli",
                                u"İnegöl", u"Ödemiş", u"Gölcük"};
constexpr std::array kStreets = {u"Atatürk Cad.", u"İstiklal Sok.", u"Gül Sok.",
                                 u"Çınar Sok.", u"Şehitler Cad.", u"Öğretmenler Cad."};
constexpr std::array kSections = {u"A", u"B", u"C", u"D", u"FENA", u"TMA"};

// Menu lines by meal; each day takes four lines of each.
constexpr std::array kBreakfast = {u"PEYNİR", u"ZEYTİN", u"DOMATES", u"ÇAY", u"HAŞLANMIŞ YUMURTA",
                                   u"BAL", u"TEREYAĞI", u"SUCUKLU YUMURTA", u"SİMİT", u"REÇEL",
                                   u"SALATALIK", u"AÇMA"};
constexpr std::array kLunch = {u"MERCİMEK ÇORBASI", u"TAVUK SOTE", u"PİRİNÇ PİLAVI", u"AYRAN",
                               u"EZOGELİN ÇORBASI", u"KURU FASULYE", u"BULGUR PİLAVI", u"TURŞU",
                               u"YAYLA ÇORBASI", u"ET SOTE", u"MAKARNA", u"CACIK", u"SÜTLAÇ",
                               u"İZMİR KÖFTE", u"ŞEHRİYE ÇORBASI", u"MEYVE"};
constexpr std::array kDinner = {u"TARHANA ÇORBASI", u"ET SOTE", u"PATATES PÜRESİ", u"MEYVE",
                                u"DOMATES ÇORBASI", u"ÇOBAN SALATA", u"ISPANAK", u"YOĞURT",
                                u"KARNIYARIK", u"PİLAV", u"KEŞKÜL", u"MANTI"};
constexpr std::array kSnacks = {u"KEK", u"PATLAMIŞ MISIR,PORTAKAL", u"SÜT", u"POĞAÇA",
                                u"ELMA", u"BÖREK"};

constexpr std::array kMealNames = {u"Kahvaltı", u"Öğle yemeği", u"Akşam yemeği"};

struct Person {
    std::u16string name;
    std::u16string surname;
    std::u16string sex;  // "K" or "E"
    int grade = 9;
    std::u16string className;
    std::int32_t number = 0;
    double identity = 0;
    bool hasPicture = false;
};

template <typename List>
std::u16string pick(std::mt19937& random, const List& list) {
    return list[random() % list.size()];
}

std::u16string text(const std::string& ascii) { return std::u16string(ascii.begin(), ascii.end()); }

Value date(int year, int month, int day) {
    return Value::date(jet::Date::fromCivil({year, month, day, 0, 0, 0}));
}

std::u16string twoDigits(int n) { return text((n < 10 ? "0" : "") + std::to_string(n)); }

Person makePerson(std::mt19937& random, std::int32_t number) {
    Person person;
    const bool girl = random() % 2 == 0;
    person.sex = girl ? u"K" : u"E";
    person.name = girl ? pick(random, kGirlNames) : pick(random, kBoyNames);
    person.surname = pick(random, kSurnames);
    person.grade = 9 + static_cast<int>(random() % 4);
    person.className = text(std::to_string(person.grade)) + pick(random, kSections);
    person.number = number;
    // Eleven digits, the first not zero, as identity numbers are.
    person.identity = 10000000000.0 + static_cast<double>(random() % 89999999) * 1000.0 +
                      static_cast<double>(random() % 1000);
    person.hasPicture = random() % 3 != 0;
    return person;
}

// The school days of the log: weekdays from the first day of the term.
std::vector<jet::CivilDateTime> schoolDays(int count) {
    std::vector<jet::CivilDateTime> days;
    jet::Date day = jet::Date::fromCivil({2026, 9, 14, 0, 0, 0});  // a Monday
    while (static_cast<int>(days.size()) < count) {
        // The OLE date 2 (1 January 1900) was a Monday.
        const int weekday = static_cast<int>(static_cast<std::int64_t>(day.oleDays) - 2) % 7;
        if (weekday < 5) days.push_back(day.toCivil());
        day.oleDays += 1;
    }
    return days;
}

std::u16string clock(std::mt19937& random, int hour, int spreadMinutes) {
    const int minute = static_cast<int>(random() % static_cast<unsigned>(spreadMinutes));
    const int second = static_cast<int>(random() % 60);
    return twoDigits(hour + minute / 60) + u":" + twoDigits(minute % 60) + u":" + twoDigits(second);
}

void addMenuMonth(std::vector<Row>& menus, std::mt19937& random, int month, int days) {
    for (int day = 1; day <= days; ++day) {
        for (int line = 0; line < 4; ++line) {
            menus.push_back({Value::integer(month), Value::integer(day),
                             Value::text(pick(random, kBreakfast)), Value::text(pick(random, kLunch)),
                             Value::text(pick(random, kDinner)),
                             line == 0 ? Value::text(pick(random, kSnacks)) : Value()});
        }
    }
}

}  // namespace

School makeSchool(const SchoolSize& size, const std::u16string& pictureFolder) {
    std::mt19937 random(1923);
    School school;
    school.settings.push_back({Value::integer(1), Value::text(u"Şehit Öğretmen Anadolu Lisesi"),
                               Value::text(u"Ayşe Yılmaz"), Value::text(u"Mehmet Öztürk"),
                               Value::text(u"07:00-08:30"), Value::text(u"12:00-13:30"),
                               Value::text(u"17:30-19:00"), Value()});

    // The picture column of a person's row; a picture named is drawn later.
    const auto pictureOf = [&](const Person& person) {
        if (!person.hasPicture)
            return Value();
        // The system's own separator: a backslash on Windows, as its programs write paths.
        constexpr auto kSeparator =
            static_cast<char16_t>(std::filesystem::path::preferred_separator);
        const std::u16string path =
            pictureFolder + kSeparator + text(std::to_string(person.number)) + u".jpg";
        school.portraits.push_back({path, person.name, person.surname, person.number});
        return Value::text(path);
    };

    std::vector<Person> dayStudents;
    for (int i = 0; i < size.students; ++i) {
        const Person person = makePerson(random, 100 + i * 3 + static_cast<int>(random() % 3));
        dayStudents.push_back(person);
        const Value picture = pictureOf(person);
        const int birthYear = 2007 + static_cast<int>(random() % 5);
        school.students.push_back(
            {Value::integer(i + 1), Value::real(person.identity), Value::text(person.name),
             Value::text(person.surname), Value::integer(person.number),
             Value::text(person.className), Value::text(person.sex),
             Value::text(text(std::to_string(person.grade))),
             Value::text(pick(random, kBoyNames)), Value::text(pick(random, kGirlNames)),
             date(birthYear, 1 + static_cast<int>(random() % 12), 1 + static_cast<int>(random() % 28)),
             Value::text(pick(random, kPlaces)),
             Value::text(pick(random, kStreets) + u" No:" + text(std::to_string(1 + random() % 90))),
             Value::text(u"0532 " + text(std::to_string(1000000 + random() % 8999999))),
             Value::text(pick(random, kBoyNames) + u" " + person.surname),
             Value::text(u"0505 " + text(std::to_string(1000000 + random() % 8999999))),
             date(2026, 9, 8), Value(), Value::text(u"Şehit Öğretmen Anadolu Lisesi"), picture,
             Value()});
    }

    std::vector<Person> boarders;
    const int boarderCount = size.boarders >= 0 ? size.boarders : size.students / 16;
    for (int i = 0; i < boarderCount; ++i) {
        const Person person = makePerson(random, 5000 + i);
        boarders.push_back(person);
        const bool girl = person.sex == u"K";
        school.boarders.push_back(
            {Value::integer(i + 1), Value::text(person.name), Value::text(person.surname),
             Value::text(text(std::to_string(100 + random() % 40))), Value::text(person.sex),
             Value::integer(person.number), Value::text(girl ? u"B" : u"A"), pictureOf(person),
             Value::text(u"Şehit Öğretmen Anadolu Lisesi"), Value::text(person.className),
             Value::real(person.identity)});
    }

    // Permits: most day students, month by month over the term.
    const std::vector<jet::CivilDateTime> days = schoolDays(size.mealDays);
    std::vector<std::pair<int, int>> months = {{2026, 9}};  // (year, month) of the term, in order
    for (const jet::CivilDateTime& day : days) {
        if (months.back() != std::pair{day.year, day.month}) {
            months.emplace_back(day.year, day.month);
        }
    }
    std::vector<std::vector<bool>> permitted(months.size(), std::vector<bool>(dayStudents.size()));
    for (std::size_t m = 0; m < months.size(); ++m) {
        for (std::size_t s = 0; s < dayStudents.size(); ++s) {
            if (random() % 10 >= 7) continue;
            permitted[m][s] = true;
            const Person& student = dayStudents[s];
            const Row& ornek = school.students[s];
            school.permits.push_back({Value::real(student.identity), Value::text(student.name),
                                      Value::text(student.surname), Value::text(student.className),
                                      Value::integer(student.number), Value::text(student.sex),
                                      ornek[19], Value::integer(months[m].second),
                                      Value::integer(months[m].first),
                                      random() % 25 == 0 ? Value::text(u"Burslu") : Value()});
        }
    }

    // The meal log: day students at lunch, boarders at all three meals.
    const auto logMeal = [&](const jet::CivilDateTime& day, const Person& person, int meal,
                             bool dayStudent, bool paid) {
        static constexpr std::array kHours = {7, 12, 17};
        school.meals.push_back(
            {Value(), Value::integer(day.day), Value::integer(day.month),
             Value::text(text(std::to_string(day.year))), date(day.year, day.month, day.day),
             Value::text(clock(random, kHours[meal], 90)), Value::text(kMealNames[meal]),
             Value::integer(dayStudent ? 1 : 0),
             paid ? Value() : Value::text(u"Yemek Ücretini Ödeyiniz"),
             Value::text(person.className), Value::integer(person.number),
             Value::text(person.name), Value::text(person.surname)});
    };
    for (const jet::CivilDateTime& day : days) {
        std::size_t month = 0;
        while (months[month] != std::pair{day.year, day.month}) ++month;
        for (int meal = 0; meal < 3; ++meal) {
            if (meal == 1) {
                for (std::size_t s = 0; s < dayStudents.size(); ++s) {
                    const bool paid = permitted[month][s];
                    // Most permitted students come; now and then one without a permit tries.
                    if (paid ? random() % 10 < 8 : random() % 40 == 0) {
                        logMeal(day, dayStudents[s], meal, true, paid);
                    }
                }
            }
            for (const Person& boarder : boarders) {
                if (random() % 10 < 9) logMeal(day, boarder, meal, false, true);
            }
        }
    }

    // Menus of the term's months and the next, four rows a day.
    std::vector<std::pair<int, int>> menuMonths = months;
    const auto [lastYear, lastMonth] = months.back();
    menuMonths.emplace_back(lastMonth == 12 ? lastYear + 1 : lastYear, lastMonth % 12 + 1);
    for (const auto& [year, month] : menuMonths) {
        static constexpr std::array kDaysInMonth = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        addMenuMonth(school.menus, random, month, kDaysInMonth[month - 1] + (month == 2 && leap));
    }

    for (int day = 1; day <= 31; ++day) {
        school.tally.push_back(
            {Value::integer(day), Value::integer(0), Value::integer(0), Value::integer(0)});
    }
    return school;
}

}  // namespace demo

#include "shell/clock.h"

namespace shell {
namespace {

QDate& chosenDay() {
    static QDate day;
    return day;
}

}  // namespace

QDate today() {
    return chosenDay().isValid() ? chosenDay() : QDate::currentDate();
}

void setTodayForTests(QDate day) {
    chosenDay() = day;
}

}  // namespace shell

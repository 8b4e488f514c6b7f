#include "shell/clock.h"

namespace shell {
namespace {

QDate& chosenDay() {
    static QDate day;
    return day;
}

QDateTime& chosenMoment() {
    static QDateTime moment;
    return moment;
}

}  // namespace

QDate today() {
    if (chosenDay().isValid())
        return chosenDay();
    return chosenMoment().isValid() ? chosenMoment().date() : QDate::currentDate();
}

QDateTime now() {
    if (chosenMoment().isValid() && !chosenDay().isValid())
        return chosenMoment();
    return QDateTime(today(), QTime::currentTime());
}

void setTodayForTests(QDate day) {
    chosenDay() = day;
}

void setNowForTests(const QDateTime& moment) {
    chosenMoment() = moment;
}

}  // namespace shell

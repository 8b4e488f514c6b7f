#pragma once

#include <QString>

namespace rosters {

// The sex options of the boarder editor.
enum class Sex { All, Girls, Boys };

// The search fragments of the boarder editor's boxes, each from its own
// box alone; an empty box (for the room list also "Tümü") gives none, "".
// A name is a prefix with the trimmed text; the room and the school number
// are the number the text begins with.
QString roomFragment(const QString& room);
QString firstNameFragment(const QString& name);
QString surnameFragment(const QString& surname);
QString schoolNumberFragment(const QString& number);

// The whole filter: the fragment joined to the sex condition with " and ".
// All boarders without a fragment is "", which clears the filter.
QString boarderFilter(const QString& fragment, Sex sex);

// The rooms of the chosen sex, one row for each sex and room.
QString roomListQuery(Sex sex);

}  // namespace rosters

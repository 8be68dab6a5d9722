// The program's colours. Each is created on first use and lives as long as the process. Main
// thread.
#pragma once

#include <QColor>

namespace orlune::OrlunePalette {

const QColor& background();
const QColor& surface();
const QColor& surfaceRaised();
const QColor& border();
const QColor& accent();
const QColor& accentBright();
const QColor& success();
const QColor& orbGraphite();
const QColor& orbPearl();

} // namespace orlune::OrlunePalette

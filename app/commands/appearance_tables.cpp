#include "app/commands/appearance_tables.h"

using namespace Qt::StringLiterals;

namespace zq::app {

namespace {
OptionTable makeAppearanceShowTable() {
  OptionTable table;
  table.command = u"appearance show"_s;
  table.brief = u"print the look of buttons as JSON"_s;
  table.summary = u"Prints the look of buttons that a file holds as JSON, which `appearance make` "
                  u"takes."_s;
  table.operands = {u"FILE"_s};
  table.options = {{u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"FILE is a keyed archive of an appearance, as programs keep them beside their buttons under "
      u"the name of the button's class and the ending .button."_s};
  table.exitStatus = u"0, 1 where the file could not be read, 2 for a wrong command line."_s;
  table.examples = {u"zqticker appearance show dark.button"_s, u"Its attributes."_s};
  return table;
}

OptionTable makeAppearanceMakeTable() {
  OptionTable table;
  table.command = u"appearance make"_s;
  table.brief = u"make the look of buttons from JSON"_s;
  table.summary = u"Writes the look of buttons that a JSON file describes."_s;
  table.operands = {u"FILE"_s};
  table.options = {{u"output"_s, {u"FILE"_s}, u"The file to write, such as dark.button."_s},
                   {u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"The file holds one object. Its keys are the attributes; one that is left out is none, 0 or "
      u"false. controlColor, frameColor, textColor, arrowColor and shadingColor are the colors of "
      u"the bezel, the outline, the title, the menu arrow and the gradient in the bezel; with "
      u"mouseover or highlighted before them (mouseoverControlColor) those under the pointer and "
      u"while pressed. controlShadow, highlightedControlShadow, textShadow, mouseoverTextShadow "
      u"and highlightedTextShadow are shadows."_s,
      u"bezelStyle is a number; 6 has the outline of a rounded rectangle, others that of a plate. "
      u"shadingMode is 0 for none, 1 for a gradient from the control color at the top to the "
      u"shading color, 2 for one with the shading color in the middle. bordered and "
      u"alwaysShowMenuIndicator are true or false, popUpMenuDelay is in seconds."_s,
      u"A color is null, \"#rrggbb\", \"#rrggbbaa\" or {\"space\": \"DeviceRGB\", "
      u"\"components\": [0.5, 0.5, 0.5, 1]}, for which the spaces are CalibratedRGB, DeviceRGB, "
      u"SRGB, CalibratedWhite, DeviceWhite and DeviceCMYK. A shadow is null or {\"offset\": [0, "
      u"-1], \"blurRadius\": 1, \"color\": \"#00000040\"}, in points to the right and upwards."_s,
      u"The output is complete or not there."_s};
  table.exitStatus =
      u"0, 1 where the description is wrong or a file could not be read or written, 2 for a wrong command line."_s;
  table.examples = {u"zqticker appearance make dark.json --output dark.button"_s,
                    u"A look from its description."_s};
  return table;
}

OptionTable makeAppearancePreviewTable() {
  OptionTable table;
  table.command = u"appearance preview"_s;
  table.brief = u"draw all looks of the buttons"_s;
  table.summary = u"Writes pictures of all looks of the buttons that a file describes, for people "
                  u"to look at."_s;
  table.operands = {u"FILE"_s};
  table.options = {
      {u"output"_s,
       {u"PNG"_s},
       u"The picture to write, such as dark.png. Without --scale there are two: dark.png with one "
       u"pixel a point, and beside it dark@2x.png with two, for finer screens."_s},
      {u"scale"_s, {u"N"_s}, u"One picture only, with so many pixels a point, 1 to 4."_s},
      {u"background"_s,
       {u"COLOR"_s},
       u"The color behind the buttons. Usual: light grey for light buttons, dark grey for dark "
       u"ones."_s},
      {u"help"_s, {}, u"Print this text."_s}};
  table.notes = {
      u"FILE is a keyed archive of an appearance, as `appearance make` writes it."_s,
      u"Each row holds a button in its states: left alone, under the pointer, pressed, on and "
      u"disabled; first without a menu, then with one, the arrow of which shows where the look "
      u"says so. The first rows show the look as it is, in three sizes and with a title that is "
      u"too long, and how far the title stands out from the bezel: 4.5 : 1 is what easy reading "
      u"needs. The rows below show both outlines with all shading modes, drawn in coordinates that "
      u"run upwards and (flipped) downwards. A dot marks the look's own."_s,
      u"Pictures are complete or not there."_s};
  table.exitStatus =
      u"0, 1 where a file could not be read or written, 2 for a wrong command line."_s;
  table.examples = {
      u"zqticker appearance preview dark.button --output dark.png"_s,
      u"Writes dark.png and dark@2x.png."_s,
      u"zqticker appearance preview dark.button --background white --scale 2 --output "
      u"white.png"_s,
      u"Dark buttons in a light window, finely."_s};
  return table;
}
} // namespace

const OptionTable& appearanceShowTable() {
  static const OptionTable table = makeAppearanceShowTable();
  return table;
}

const OptionTable& appearanceMakeTable() {
  static const OptionTable table = makeAppearanceMakeTable();
  return table;
}

const OptionTable& appearancePreviewTable() {
  static const OptionTable table = makeAppearancePreviewTable();
  return table;
}

} // namespace zq::app

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/CommandLine.h"

#include "Host/Commands/EffectsCommand.h"
#include "Host/Commands/Frei0rCommand.h"
#include "Host/Commands/NewEffectCommand.h"
#include "Host/Commands/RenderCommand.h"
#include "Host/Commands/SheetCommand.h"
#include "Host/Commands/StateCommand.h"
#include "Host/Commands/SubmitCommand.h"
#include "Host/Guidance/CompleteCommand.h"
#include "Host/Guidance/CompletionScripts.h"
#include "Host/Guidance/GuidanceCommands.h"
#include "Host/Guidance/HelpFormatter.h"
#include "Host/Guidance/ProgramFacts.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Signals.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Utf8.h"
#include "Host/Pixels/Layouts.h"
#include "Host/Preview/PreviewServer.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace host {
namespace {

constexpr const char* kFooter = R"(
Effects are found in /Library/Application Support/Hollin/Internal Plug-Ins/Vorto, /Library/Plug-Ins/Vorto and
~/Library/Plug-Ins/Vorto, then in the folders of VORTO_PLUGIN_PATH (separated by colons), then beside the program.

vorto COMMAND --help tells more about a command, and so does man vorto-COMMAND.

Examples:
  vorto effects
  vorto render "Gradient Map" --input photo.png --state gradient=preset:Cyanotype --output out.png
  vorto inspect "Gradient Map" --input photo.png
  vorto state --presets

Exit codes: )";

constexpr const char* kEffectsFooter = R"(
An effect's ports stand below it: the key, the name, the kind, and what it may be. --set and --state of vorto render take
the key, the key without "input", or the name. Effects that cannot be made are told on standard error.

Examples:
  vorto effects
  vorto effects --json)";

constexpr const char* kSheetFooter = R"(
The pictures stand in rows on dark gray, scaled down to fit, with a caption below each.

Examples:
  vorto sheet before.png after.png --output sheet.png
  vorto sheet a.png b.png c.png d.png --columns 2 --labels A B C D --output sheet.jpg)";

constexpr const char* kCompletionFooter = R"(
Packages install the scripts where shells find them. Elsewhere a line in the shell's start file serves:

  bash  source <(vorto completion bash), in ~/.bashrc
  zsh   source <(vorto completion zsh), in ~/.zshrc behind compinit
  fish  vorto completion fish | source, in ~/.config/fish/config.fish

Commands, options, effects, ports, presets and the names that options take are completed; other words as files.

Examples:
  vorto completion bash)";

constexpr const char* kRenderFooter = R"(
Values of --set, by the kind of the port (vorto effects lists ports; one is named by its key, as inputLevels, or by its
name, as Levels):
  number    -1.5 or 2e-3, within the port's range
  boolean   true or false, on or off, 1 or 0
  index     a whole number, or an entry of the port's menu
  color     #rrggbb, #rrggbbaa, orange and the other names of CSS, rgb(), hsl(), or r,g,b[,a] with values from 0 to 1; not
            premultiplied
  string    the text as it is
  image     a picture's file, for ports that are not filled by --input; its size and depth may be others
  gradient  stops apart by commas: color, position, "constant", "linear" (default) or "smooth"; or linear-gradient() of CSS
  levels    values apart by commas, as gamma=1.2, red.blackIn=10%; one at a time, PORT.gamma=1.2 keeps the others as they
            are after --state and earlier --set

Colors are rendered in the space of the first input, premultiplied: inputs in other spaces are converted to it, and the
result to what the file holds, display values in integers and linear ones in floats; what is converted is said on
standard error. A file without a tag counts as sRGB, and as linear Rec.709 when it holds floats. Spaces are sRGB, Linear
Rec.709, Rec.709, Rec.2020, Linear Rec.2020, Display P3, Linear P3-D65, ACEScg, ACES2065-1, raw, and those of the
OpenColorIO configuration that $OCIO names. Pictures of --set are taken as they are.

Files are what their first bytes say; what is written, the extension or --format says: png, jpg, tif, exr, webp, bmp, tga,
dpx, hdr, jp2, heic, ppm, pnm, pfm. "-" is the standard input or output. FILE:LAYER reads a layer or part of an EXR. PNG
stores straight alpha; JPEG stores none, which shows the picture over black; TIFF and EXR store premultiplied alpha. What a
format cannot hold is written in the next depth that it can: PNG takes 8 and 16 bits, JPEG 8, TIFF 8, 16 and float, EXR half
and float. Pictures are read upright. What the first input's file says about itself (Exif, resolution, time code, EXR
attributes, ...) is kept where the format holds it; --verbose tells what is lost.

A pixel format is how the host holds pictures before the effect and after it: every input goes through a bitmap of that
layout, which loses what the layout cannot hold, and on in the nearest layout that effects take (rgba8 and argb8 as they
are; yuv422 as argb8; rgb16, la16 and l16 as rgba16; rgbahalf as rgbafloat); the result goes through such a bitmap again
and is written in its depth. Without alpha a picture is shown over black; luminance is 0.299 red + 0.587 green + 0.114
blue.

Sequences have the frame's number in the name, %d or %04d. All inputs with one run over the same frames, unless
--when-short says what a shorter one does; stills stay. The time of a transition goes from 0 at the first frame to 1 at the
last; other effects get seconds since the first. Frames that were written before a failure stay.

Clips are read from MP4, MOV, MKV, WebM, AVI and others, and written as .mp4, .mov, .mkv, .webm or .avi. The first clip
leads: its frames come one by one at their own times, counted from 0, and other clips and sequences show the frame that is
nearest in time. Audio goes along as it is. Their colors are those of displays, Rec.709 unless the clip says otherwise; 10
and 12 bits are worked on in 16. A damaged clip is rendered as far as it can be read, which is said.

Frames are rendered by as many processes as there are cores; --jobs says how many. The files are the same. Effects that
keep a state from frame to frame have one.

Examples:
  vorto render "Gradient Map" --input photo.png --state gradient=sunset.plist --output out.png
  vorto render "Gradient Map" --input photo.png --state gradient=preset:Cyanotype --output out.png
  vorto render Dissolve --input a.png b.png --time 0.5 --size 1920x1080 --output mix.tif
  vorto render Levels --input in.%04d.exr --state levels=grade.plist --output out.%04d.exr
  vorto render "Gradient Map" --input clip.mov --start 0:10 --duration 5 --output graded.mp4 --quality 80
  vorto render Over --input clip.mp4 logo.png --output out.mov --codec prores
  vorto render Levels --input in.%04d.exr --frames 1-96x8 --chunk 3 --resume --output out.%04d.exr
  vorto render Checkerboard --size 640x480 --set "first color=#202020" --output board.png
  vorto render "Gradient Map" --input photo.png --set "gradient=#102040 0%, #ff8800 smooth 50%, white" --output out.png
  vorto render Levels --input photo.png --set levels.gamma=1.2 --set levels.red.blackIn=10% --output out.png)";

constexpr const char* kStateFooter = R"(
A state is a property list, XML or binary: a gradient's or levels' dictionary, opaque data, or a keyed archive of one,
under present or older class names. It is also what --json prints; a gradient or levels as text (as for render --set); and
a gradient of other programs: linear-gradient() of CSS, the stops of an SVG file, .ggr, or a .cpt palette. What these blend
in other ways is met within 1/255 by added stops, which are counted on standard error.

preset:NAME is a preset of that name: one that came with vorto, or one of your own, a file in the folder gradients or
levels in $XDG_DATA_HOME/vorto/presets or ~/.local/share/vorto/presets. A file of that name is ./preset:NAME.

--convert xml and --convert binary keep the form of the file (dictionary or archive; dictionary for a text) unless --form
is given. --convert text writes what is read again as the same state; css, svg and ggr are for gradients.

Examples:
  vorto state sunset.plist --json
  vorto state --presets
  vorto state preset:Cyanotype --convert css --output cyanotype.css
  vorto state sunset.ggr --convert xml --output sunset.plist
  vorto state sunset.plist --convert text --output sunset.txt)";

constexpr const char* kInspectFooter = R"(
The picture is rendered in processes beside the window after every change, every input parameter has a row, sequences and
clips play (space), and F1 shows all keys. Ctrl+O or a drop opens pictures, clips and states; Ctrl+E saves the picture and
Ctrl+Shift+E exports a clip or a sequence, both as render writes them; Ctrl+S saves a gradient's or levels' state where it
came from. Without an effect the one of last time is shown. What people chose is remembered in
$XDG_CONFIG_HOME/vorto/inspector.ini or ~/.config/vorto/inspector.ini.

A screenshot and --benchmark need no display. --benchmark prints how long it takes until pictures are on a screen of 1200
x 800 pixels: the first one, those of a drag, the full one at rest, and how many frames a second come.

Examples:
  vorto inspect Levels --input photo.png --state levels=grade.plist
  vorto inspect "Gradient Map" --input clip.mp4
  vorto inspect "Gradient Map" --input in.%04d.exr
  vorto inspect --state gradient=sunset.plist --screenshot gradient.png --scale 2 --appearance dark)";

constexpr const char* kSubmitFooter = R"(
The frames are rendered in an array of tasks, each a chunk: --frames 1-96x8 makes twelve tasks of eight frames; without x
there are ten in a task. Times are those of all frames together, and the files are those that vorto render alone would
write. Frames that are there already stay, so that a task which is run again goes on where it was. An effect that keeps a
state from frame to frame is one task.

A clip is assembled by a second job from frames beside it, in OUTPUT.frames-XXXXXXXX, which are removed when it is whole.

All machines need the same vorto, effects and files under the same paths. The scripts are kept beside the logs; a task
that failed is run again by sbatch --array=K SCRIPT.

Examples:
  vorto submit -- render Levels --input in.%04d.exr --frames 1-96x8 --output out.%04d.exr
  vorto submit --slurm=--partition=render --slurm=--cpus-per-task=8 -- render Noise --frames 0-999x50 --output n.mov
  vorto submit --dry-run -- render Dissolve --input a.%04d.png b.%04d.png --output mix.%04d.png)";

constexpr const char* kFrei0rFooter = R"(
A plug-in is a small file that hands over to the installed vorto. Those of the effects that ship are installed with it;
this writes them for effects and compositions of your own, which hosts then find in ~/.frei0r-1/lib or in the folders of
FREI0R_PATH. Files that vorto did not write stay as they are.

Examples:
  vorto frei0r --list
  vorto frei0r "My Look"
  vorto frei0r --output /srv/plug-ins/frei0r)";

constexpr const char* kNewEffectFooter = R"(
The folder holds one source with ports of several types, a test, and what CMake needs to build them (an installed
framework with its headers); a composition needs no compiler. In it

  cmake --workflow --preset default

builds the effect, renders build/picture.png and runs the test.

Examples:
  vorto new-effect "Soft Glow"
  vorto new-effect "Page Turn" --kind transition --output effects/page-turn
  vorto new-effect "Old Print" --kind composition)";

// Ranges let it pass: it compares with nothing.
std::string refuseNaN(const std::string& text) {
  return std::isnan(std::strtod(text.c_str(), nullptr)) ? "Value " + text + " is no number" : "";
}

void addPython(CLI::App& command, std::vector<std::string>& files) {
  command
      .add_option(
          "--python", files,
          "Run a file of Python first, whose effects then go by their names; may be repeated (needs python3-vorto)")
      ->type_name("FILE")
      ->allow_extra_args(false);
}

void addEffects(CLI::App& app, EffectsOptions& options) {
  CLI::App* command = app.add_subcommand("effects", "List the effects by kind, with their ports, ranges and defaults");
  command->footer(kEffectsFooter);
  command->add_flag("--json", options.json, "As JSON");
  addPython(*command, options.python);
}

void addFraming(CLI::App& command, FramingOptions& options) {
  command
      .add_option("--size", options.size,
                  "A generator's size; that of a filter's result, or of the pictures of a blend mode or transition")
      ->type_name("WxH");
  command
      .add_option("--filter", options.filter,
                  "How pictures are scaled: nearest, box, linear, cubic or lanczos; default lanczos")
      ->type_name("NAME");
  command
      .add_option("--fit", options.fit,
                  "How a picture of another shape fills --size: stretch, fit (the rest is empty) or fill (the rest is "
                  "cut off); default stretch")
      ->type_name("MODE");
  command
      .add_option("--place", options.place,
                  "Where an input of another size lies on the first: center, top-left, top, ..., bottom-right, X,Y in "
                  "pixels, or scaled to it by fit, fill or stretch; default center")
      ->type_name("PLACE");
}

void addEncoding(CLI::App& command, EncodingOptions& options) {
  command
      .add_option("--format", options.format,
                  "The format or container to write, by its extension; for --output - also y4m or raw; default: as the "
                  "name says")
      ->type_name("NAME");
  command.add_option("--quality", options.quality, "Of JPEG (default 95), WebP (95), HEIF (90) and clips")
      ->type_name("1-100")
      ->check(CLI::Range(1, 100));
  command
      .add_option("--compression", options.compression,
                  "How files are compressed: none or deflate for PNG; none, lzw, deflate, packbits or zstd for TIFF; "
                  "none, rle, "
                  "zip, zips, piz, pxr24, b44, b44a, dwaa or dwab for EXR; 444, 422 or 420 for JPEG")
      ->type_name("METHOD[:LEVEL]");
}

void addColors(CLI::App& command, ColorOptions& options) {
  command
      .add_option(
          "--working-space", options.working,
          "The color space in which the effect works, or raw: convert nothing; default: that of the first input")
      ->type_name("SPACE");
  command
      .add_option("--input-space", options.inputs,
                  "The color space of the inputs, or of one of them, instead of what the files say; may be repeated")
      ->type_name("[FILE=]SPACE")
      ->allow_extra_args(false);
}

void addTiming(CLI::App& command, TimingOptions& options) {
  command
      .add_option("--frames", options.frames,
                  "The frames of a sequence, or of a clip from 0 on; default: all. xCHUNK divides them for --chunk")
      ->type_name("A-B[xCHUNK]");
  command
      .add_option("--chunk", options.chunk,
                  "Render this chunk alone, counted from 1; times are those of all frames together")
      ->type_name("K")
      ->check(CLI::Range(1u, 4000000000u));
  command.add_option("--rate", options.rate, "Frames per second of a sequence; default 25, or as the first clip")
      ->type_name("N");
  command
      .add_option("--fps", options.fps,
                  "Frames per second of the result: each shows the nearest frame of the input; default: as the first "
                  "clip, also where its frames come unevenly")
      ->type_name("N");
  command.add_flag("--retime", options.isRetimed, "With --fps: the same frames, played at that rate");
  command.add_option("--start", options.start, "From when on inputs are rendered")->type_name("[H:[M:]]S");
  command.add_option("--duration", options.duration, "For how long")->type_name("[H:[M:]]S");
  command
      .add_option(
          "--when-short", options.whenShort,
          "What an input that is shorter than another does: hold its last frame, loop, or end all; default hold "
          "(sequences alone: they have the same frames)")
      ->type_name("MODE");
}

void addClip(CLI::App& command, ClipOptions& options) {
  command
      .add_option("--codec", options.codec,
                  "Of a clip: h264, hevc, vp9, av1, prores, dnxhr, ffv1 or png; default: the container's usual")
      ->type_name("NAME");
  command.add_option("--speed", options.speed, "The encoder's preset, as it names them: fast, medium, slow, 6, ...")
      ->type_name("NAME");
  command
      .add_option("--sampling", options.sampling,
                  "How a clip stores color: 420, 422, 444 or rgb; default: the codec's usual")
      ->type_name("NAME");
  command
      .add_option("--audio", options.audio,
                  "A file whose audio goes into the clip; default: the first clip's, untouched")
      ->type_name("FILE");
  command.add_option("--audio-start", options.audioStart, "From when on its audio is taken")->type_name("[H:[M:]]S");
  command.add_flag("--no-audio", options.isSilent, "Leave the audio out");
  command
      .add_option("--patience", options.patience,
                  "Seconds that decoding or encoding one frame of a clip may take; default 60")
      ->type_name("S")
      ->check(CLI::Range(0.1, 86400.0))
      ->check(refuseNaN);
}

void addRender(CLI::App& app, RenderOptions& options) {
  CLI::App* command = app.add_subcommand("render", "Render an effect to a picture, a sequence or a clip");
  command->footer(kRenderFooter + ("\n\nPixel formats:\n" + layoutList()));
  command->add_option("effect", options.effect, "The effect's name")->required()->type_name("EFFECT");
  command
      ->add_option(
          "-i,--input", options.inputs,
          "A filter's picture, sequence or clip; a blend mode's background and foreground; a transition's A and "
          "B")
      ->type_name("FILE");
  command->add_option("-o,--output", options.output, "The picture, sequence or clip to write")
      ->required()
      ->type_name("FILE");
  command->add_option("--set", options.values, "Set a port; may be repeated")
      ->type_name("PORT=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option(
          "--state", options.states,
          "Set a gradient, levels or opaque port from a saved state, or preset:NAME (vorto state --presets lists them)")
      ->type_name("PORT=FILE")
      ->allow_extra_args(false);
  addPython(*command, options.python);
  addFraming(*command, options.framing);
  command->add_option("--time", options.time, "A transition's time, 0 to 1; seconds for other effects; default 0")
      ->type_name("T");
  command->add_option("--depth", options.depth, "Render and write at 8, 16, half or float; default: as the inputs")
      ->type_name("DEPTH");
  command
      ->add_option("--pixel-format", options.layout,
                   "Hold pictures in bitmaps of this layout, in its depth (listed below); not with --depth")
      ->type_name("NAME");
  command
      ->add_option("--alpha", options.alpha,
                   "What becomes of the result's alpha: keep, opaque, or gray (copied into the colors); default keep")
      ->type_name("MODE");
  command
      ->add_option(
          "--channels", options.channels,
          "The channels of the file: gray, gray+alpha, rgb, rgba, or auto: gray and opaque inputs stay so where "
          "the result is; default auto")
      ->type_name("NAME");
  addColors(*command, options.colors);
  command
      ->add_option("--output-space", options.colors.output,
                   "The color space of the file; default: display values in files of integers, linear ones in files of "
                   "floats")
      ->type_name("SPACE");
  addEncoding(*command, options.encoding);
  addTiming(*command, options.timing);
  addClip(*command, options.clip);
  command
      ->add_option("-j,--jobs", options.jobs, "How many processes render; default: one for each core, of many frames")
      ->type_name("N")
      ->check(CLI::Range(1, 1024));
  command->add_flag("--resume", options.isResumed, "Render only the frames of a sequence whose files are missing");
  command->add_flag("--verbose", options.isVerbose, "Say what a file does not keep");
  command->add_flag("--tell-progress", options.tellsProgress)->group("");
  command->add_flag("--worker", options.isWorker)->group("");
}

void addState(CLI::App& app, StateOptions& options) {
  CLI::App* command = app.add_subcommand("state", "Print or convert a saved gradient, levels or opaque state");
  command->footer(kStateFooter);
  command->add_option("file", options.file, "The state's file, or preset:NAME")->type_name("STATE");
  command->add_flag("--presets", options.presets, "List the gradients and levels that go by a name");
  command->add_flag("--json", options.json, "As JSON");
  command->add_option("--convert", options.convert, "Write it as xml or binary; as text; a gradient as css, svg or ggr")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"xml", "binary", "text", "css", "svg", "ggr"}));
  command->add_option("--form", options.form, "Write it as dictionary or archive")
      ->type_name("FORM")
      ->check(CLI::IsMember({"dictionary", "archive"}));
  command->add_option("-o,--output", options.output, "The file to write")->type_name("FILE");
}

void addSheet(CLI::App& app, SheetOptions& options) {
  CLI::App* command = app.add_subcommand("sheet", "Lay pictures out on a contact sheet");
  command->footer(kSheetFooter);
  command->add_option("files", options.files, "The pictures, in the order of reading")->required()->type_name("FILE");
  command->add_option("-o,--output", options.output, "The sheet: png, jpg, tif or exr")->required()->type_name("FILE");
  command->add_option("--columns", options.columns, "Pictures in a row; default: as square as possible")
      ->type_name("N")
      ->check(CLI::Range(1, 1000));
  command->add_option("--labels", options.labels, "One caption per picture; default: the files' names")
      ->type_name("TEXT");
}

void addInspect(CLI::App& app, InspectOptions& options) {
  CLI::App* command =
      app.add_subcommand("inspect", "Open an effect's parameters, or one saved state, in a window with a live preview");
  command->footer(kInspectFooter);
  command->add_option("effect", options.effect, "The effect's name; left out to edit a state alone")
      ->type_name("EFFECT");
  command->add_option("-i,--input", options.inputs, "The effect's pictures or sequences, as for render")
      ->type_name("FILE");
  command
      ->add_option("--open", options.files,
                   "Without an effect: states, each in a window, and pictures and clips, for the effect of last time")
      ->type_name("FILE");
  command->add_option("--set", options.values, "Set a port, as for render; may be repeated")
      ->type_name("PORT=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option("--state", options.states,
                   "Set a gradient, levels or opaque port from a saved state; without an effect, the kind of the state "
                   "(gradient, levels, opaque) and its file; preset:NAME as for render")
      ->type_name("PORT=FILE")
      ->allow_extra_args(false);
  addPython(*command, options.python);
  addFraming(*command, options.framing);
  addColors(*command, options.colors);
  command->add_option("--time", options.time, "As for render")->type_name("T");
  command->add_option("--depth", options.depth, "As for render")->type_name("DEPTH");
  command->add_option("--frames", options.frames, "The frames of a sequence; default: all that exist")
      ->type_name("A-B");
  command->add_option("--rate", options.rate, "Frames per second of a sequence; default 25, or as the first clip")
      ->type_name("N");
  command
      ->add_option("--screenshot", options.screenshot,
                   "Write a picture of the window (png, jpg, tif or exr) instead of showing it")
      ->type_name("FILE");
  command->add_flag("--benchmark", options.isBenchmark,
                    "Print how long pictures take to come while parameters change; needs no display");
  command->add_option("--appearance", options.appearance, "light or dark; default: as the desktop")
      ->check(CLI::IsMember({"light", "dark"}))
      ->type_name("LOOK");
  command->add_option("--scale", options.scale, "Device pixels per point, 0.5 to 4; default: as the desktop")
      ->check(CLI::Range(0.5, 4.0))
      ->check(refuseNaN)
      ->type_name("N");
}

void addPreview(CLI::App& app) {
  app.add_subcommand("preview", "How the inspector starts the processes that render its pictures")->group("");
}

void addManual(CLI::App& app, ManualOptions& options) {
  CLI::App* command = app.add_subcommand("manual", "How the build makes the manual pages")->group("");
  command->add_option("page", options.page, "vorto, or a command");
  command->add_option("-o,--output", options.folder, "Where all pages are written");
}

void addCompletion(CLI::App& app, CompletionOptions& options) {
  CLI::App* command = app.add_subcommand("completion", "Print what makes a shell complete the words of vorto");
  command->footer(kCompletionFooter);
  command->add_option("shell", options.shell, "bash, zsh or fish")
      ->required()
      ->type_name("SHELL")
      ->check(CLI::IsMember(completionShells()));
}

void addSubmit(CLI::App& app, SubmitOptions& options) {
  CLI::App* command = app.add_subcommand("submit", "Have a sequence or clip rendered by a farm, through Slurm");
  command->footer(kSubmitFooter);
  command
      ->add_option(
          "--slurm", options.slurm,
          "An option of sbatch, as in --slurm=--partition=NAME; may be repeated, and prevails over vorto's own")
      ->type_name("OPTION")
      ->allow_extra_args(false);
  command->add_option("--retries", options.retries, "How often a task tries again before it fails; default 2")
      ->type_name("N")
      ->check(CLI::Range(0, 100));
  command->add_option("--logs", options.logs, "Where scripts and logs go; default: logs beside the output")
      ->type_name("FOLDER");
  command->add_option("--after", options.after, "Begin when this job has succeeded; several: 17:18")->type_name("JOB");
  command->add_flag("--dry-run", options.isDryRun, "Print the scripts, and change nothing");
  command->add_option("command", options.command, "render and its arguments, behind --")
      ->required()
      ->type_name("-- render ...");
}

void addFrei0r(CLI::App& app, Frei0rOptions& options) {
  CLI::App* command = app.add_subcommand("frei0r", "Make effects plug-ins of frei0r, for ffmpeg, melt and GStreamer");
  command->footer(kFrei0rFooter);
  command->add_option("effects", options.effects, "The effects' names; default: all")->type_name("EFFECT");
  command->add_option("-o,--output", options.output, "The folder to write to; default: ~/.frei0r-1/lib")
      ->type_name("FOLDER");
  command->add_flag("--list", options.isList, "List the plug-ins and their parameters, and what is left out");
  command->add_flag("--shipped", options.isShipped, "Of all effects those alone that came with vorto");
}

void addNewEffect(CLI::App& app, NewEffectOptions& options) {
  CLI::App* command = app.add_subcommand("new-effect", "Begin an effect of your own: a small project that works");
  command->footer(kNewEffectFooter);
  command->add_option("name", options.name, "The effect's name, as people read it")->required()->type_name("NAME");
  command
      ->add_option("--kind", options.kind,
                   "filter, generator, transition, blend-mode, or composition, which is made of other effects; default "
                   "filter")
      ->type_name("KIND")
      ->check(CLI::IsMember(newEffectKinds()));
  command
      ->add_option("--identifier", options.identifier,
                   "What its files and targets are called, in letters and digits; default: the words of the name")
      ->type_name("ID");
  command->add_option("-o,--output", options.output, "The folder to make; default: the identifier")
      ->type_name("FOLDER");
}

struct Options {
  EffectsOptions effects;
  RenderOptions render;
  StateOptions state;
  SheetOptions sheet;
  InspectOptions inspect;
  SubmitOptions submit;
  Frei0rOptions frei0r;
  NewEffectOptions newEffect;
  ManualOptions manual;
  CompletionOptions completion;
};

void addCommands(CLI::App& app, Options& options) {
  app.name("vorto");
  app.formatter(std::make_shared<HelpFormatter>());
  app.footer(kFooter + exitCodesText() + ". A failure leaves existing files as they were.");
  app.set_version_flag("--version", "vorto " VORTO_VERSION);
  app.require_subcommand(1);
  addEffects(app, options.effects);
  addRender(app, options.render);
  addState(app, options.state);
  addSheet(app, options.sheet);
  addInspect(app, options.inspect);
  addPreview(app);
  addManual(app, options.manual);
  addCompletion(app, options.completion);
  addSubmit(app, options.submit);
  addFrei0r(app, options.frei0r);
  addNewEffect(app, options.newEffect);
}

// "render" and its arguments. Throws Failure for what render would not take.
RenderCommandLine parsedRender(const std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments[0] != "render") {
    throw Failure(ExitCode::Usage, "behind -- stands a render command, as in vorto submit -- render EFFECT ...");
  }
  CLI::App app;
  RenderCommandLine parsed;
  addRender(app, parsed.options);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    throw Failure(ExitCode::Usage, std::string(error.what()) + " (vorto render --help tells more)");
  }
  for (const CLI::Option* option : app.get_subcommand("render")->get_options()) {
    if (option->count() == 0 || option->get_lnames().empty()) continue;
    const bool isFlag = option->get_expected_max() == 0;
    parsed.given.push_back({"--" + option->get_lnames()[0], isFlag ? std::vector<std::string>() : option->results()});
  }
  return parsed;
}

void runCommand(const CLI::App& app, const Options& options, const InspectAction& inspect) {
  if (app.got_subcommand("effects")) {
    runEffects(options.effects);
  } else if (app.got_subcommand("manual")) {
    runManual(app, options.manual);
  } else if (app.got_subcommand("completion")) {
    runCompletion(options.completion);
  } else if (app.got_subcommand("render")) {
    runRender(options.render);
  } else if (app.got_subcommand("state")) {
    runState(options.state);
  } else if (app.got_subcommand("inspect")) {
    inspect(options.inspect);
  } else if (app.got_subcommand("submit")) {
    runSubmit(options.submit, parsedRender(options.submit.command));
  } else if (app.got_subcommand("frei0r")) {
    runFrei0r(options.frei0r);
  } else if (app.got_subcommand("new-effect")) {
    runNewEffect(options.newEffect);
  } else if (app.got_subcommand("preview")) {
    runPreviewServer();
  } else {
    runSheet(options.sheet);
  }
  finishStandardOutput();
}

int report(const std::string& message, ExitCode code) {
  std::fprintf(stderr, "vorto: %s\n", printable(message).c_str());
  return static_cast<int>(code);
}

}  // namespace

int runProgram(int argc, char** argv, const InspectAction& inspect) {
  occupyStandardDescriptors();
  prepareForSignals();
  try {
    CLI::App app("Lists and renders image effects, and looks into their saved parameters.");
    Options options;
    options.render.commandLine.assign(argv + 1, argv + argc);
    addCommands(app, options);
    if (argc > 1 && std::string_view(argv[1]) == "complete") {  // its arguments are another command's
      runComplete(app, {argv + 2, argv + argc});
      finishStandardOutput();
      return static_cast<int>(ExitCode::Success);
    }
    try {
      app.parse(argc, argv);
    } catch (const CLI::Success& success) {  // --help and --version
      app.exit(success);
      finishStandardOutput();
      return static_cast<int>(ExitCode::Success);
    } catch (const CLI::ParseError& error) {
      return report(std::string(error.what()) + " (vorto --help tells more)", ExitCode::Usage);
    }
    runCommand(app, options, inspect);
    return static_cast<int>(ExitCode::Success);
  } catch (const std::exception&) {
    const Failure failure = caughtFailure();
    return report(failure.what(), failure.code);
  }
}

}  // namespace host

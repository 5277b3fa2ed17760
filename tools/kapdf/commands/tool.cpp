#include "commands/tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>

#include "system/output.h"
#include "system/progress.h"
#include "system/settings.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr const char *kFooter = R"(
Examples
  kapdf info plan.pdf
      How many pages, and what is on the first one.
  kapdf info plan.pdf --page 2 --preview page.bmp
      A small picture of page 2, if the renderer libraries stand beside the module.
  kapdf import plan.pdf -o plan.svg
      See what came in: layers are groups, open it in any browser.
  kapdf import plan.pdf --page 2 -o plan.jsonl
      The elements of page 2, one to a line, in millimetres.
  kapdf import scan.pdf --images pictures -o scan.jsonl
      The rasters as PNG files, and lines that name them.
  kapdf import plan.pdf | grep '"kind":"circle"'
      Without -o the lines go to the standard output.
  kapdf export plan.jsonl -o new.pdf --options "/frame 5 /origin 1"
      A PDF of the drawing with a frame of 5 mm.
  kapdf export front.jsonl side.jsonl -o plans.pdf --pdfa
      A page for each drawing, as PDF/A.
  kapdf export new.jsonl -o plans.pdf --append
      One page more; --replace 2 puts it in place of page 2.
  kapdf info locked.pdf --password-file secret.txt
      An encrypted file; without a password those are read that open without one.
  kapdf convert plan.pdf clean.pdf --all
      Import and export in one go, page by page.
  kapdf import map.pdf --all --set FitTolerance=0.01 -o map.jsonl
      A setting for this run only; the user's own settings stay as they are.

Exit status: 0 done, 1 failed, 2 wrong usage, 130 stopped with Ctrl-C.
A failure is one sentence with the module's result code.)";

struct CommandLine {
  std::string library;
  std::vector<std::string> settings;
  bool quiet = false, pdfa = false;
  Reading reading;
  std::string passwordFile;
  InfoRequest info;
  ImportRequest import;
  ExportRequest exporting;
  ConvertRequest convert;
};

void AddCommon(CLI::App *command, CommandLine &line) {
  command->add_option("--lib", line.library, "The module to load (else KAPDF_LIB, else the one beside the program)")
      ->type_name("PATH");
  command->add_option("--set", line.settings, "A setting for this run; may be repeated (--help-settings lists them)")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command->add_flag("-q,--quiet", line.quiet, "No summary");
}

void AddReading(CLI::App *command, CommandLine &line) {
  command->add_flag("--classic", line.reading.classic, "Read to the letter of old, not as other readers do");
  CLI::Option *password =
      command->add_option("--password", line.reading.password, "Of an encrypted file, the user's or the owner's");
  password->type_name("TEXT");
  command->add_option("--password-file", line.passwordFile, "The same as the first line of a file")
      ->type_name("FILE")
      ->excludes(password);
}

void AddTarget(CLI::App *command, Target &target, CommandLine &line) {
  CLI::Option *append =
      command->add_flag("--append", target.append, "Add to the file, behind its last page; nothing of it is changed");
  command->add_option("--replace", target.replace, "Add to the file, in place of this page, from 1")
      ->type_name("N")
      ->excludes(append);
  command->add_flag("--pdfa", line.pdfa, "Write PDF/A (the same as --set PDFA=1)");
  command->add_option("--options", target.options, "Export options, for instance \"/frame 5 /origin 1\"")
      ->type_name("S");
}

// The subcommands, in the order of Commands below.
std::vector<CLI::App *> Declare(CLI::App &app, CommandLine &line) {
  app.require_subcommand(1);
  app.footer(kFooter);
  app.get_formatter()->column_width(30);
  app.set_version_flag("--version", "kapdf " + VersionText(KAPDF_FILTER_VERSION),
                       "Tell the program's version and exit");
  app.add_flag_callback(
      "--help-settings", [] { throw CLI::CallForVersion(SettingsHelp(), 0); }, "The names that --set takes, and exit");

  CLI::App *info = app.add_subcommand("info", "Tell the pages of a PDF file, what is on one, and the module's version");
  info->add_option("FILE", line.info.file, "The PDF file")->required();
  info->add_option("--page", line.info.page, "The page to look at, from 1")->type_name("N");
  info->add_option("--preview", line.info.preview, "Write a small picture of the page as a BMP file")->type_name("OUT");

  CLI::App *import = app.add_subcommand("import", "Read pages of a PDF file as JSON Lines or SVG");
  import->add_option("FILE", line.import.file, "The PDF file")->required();
  CLI::Option *page = import->add_option("--page", line.import.page, "The page, from 1; the first if not given");
  page->type_name("N");
  import->add_flag("--all", line.import.all, "Every page; SVG goes to OUT-1.svg, OUT-2.svg, ...")->excludes(page);
  import->add_option("--options", line.import.options, "Import options, for instance \"/mode 0 /text 1\"")
      ->type_name("S");
  import->add_option("-o", line.import.output, "OUT.jsonl or OUT.svg; JSON Lines to the standard output if not given")
      ->type_name("OUT");
  import->add_option("--images", line.import.images, "Write the rasters as PNG files to this folder")->type_name("DIR");

  CLI::App *exporting = app.add_subcommand("export", "Write drawings in JSON Lines as the pages of a PDF file");
  exporting->add_option("DRAWING", line.exporting.drawings, "The drawings; - reads the standard input")->required();
  exporting->add_option("-o", line.exporting.target.path, "The PDF file to write")->type_name("OUT")->required();
  exporting->add_option("--page", line.exporting.page, "The page of drawings that have several, from 1")
      ->type_name("N");
  AddTarget(exporting, line.exporting.target, line);

  CLI::App *convert = app.add_subcommand("convert", "Import pages of a PDF file and export them to another");
  convert->add_option("IN", line.convert.file, "The PDF file to read")->required();
  convert->add_option("OUT", line.convert.target.path, "The PDF file to write")->required();
  CLI::Option *pageIn = convert->add_option("--page", line.convert.page, "The page, from 1; the first if not given");
  pageIn->type_name("N");
  convert->add_flag("--all", line.convert.all, "Every page")->excludes(pageIn);
  AddTarget(convert, line.convert.target, line);

  std::vector<CLI::App *> commands{info, import, exporting, convert};
  for (CLI::App *command : commands) AddCommon(command, line);
  for (CLI::App *command : {info, import, convert}) AddReading(command, line);
  return commands;
}

std::string ModulePath(const CommandLine &line) {
  if (!line.library.empty()) return AbsolutePath(line.library);
  if (const std::string named = Environment("KAPDF_LIB"); !named.empty()) return AbsolutePath(named);
  return Utf8Of(PathOf(ProgramFolder()) / PathOf(ModuleFileName()));
}

bool SameFile(const std::string &a, const std::string &b) {
  std::error_code error;
  return std::filesystem::equivalent(PathOf(a), PathOf(b), error) && !error;
}

// Everything that depends on the current directory, ahead of the module, which changes it.
Outcome ResolvePaths(CommandLine &line) {
  if (line.import.output == "-") line.import.output.clear();
  line.import.folder = AbsolutePath(".");
  for (std::string *path :
       {&line.info.file, &line.info.preview, &line.import.file, &line.import.output, &line.import.images,
        &line.exporting.target.path, &line.convert.file, &line.convert.target.path, &line.passwordFile}) {
    if (!path->empty()) *path = AbsolutePath(*path);
  }
  line.exporting.folder = line.import.folder;
  bool overwrites = SameFile(line.info.file, line.info.preview) || SameFile(line.import.file, line.import.output) ||
                    SameFile(line.convert.file, line.convert.target.path);
  for (std::string &drawing : line.exporting.drawings) {
    if (drawing != "-") drawing = AbsolutePath(drawing);
    overwrites = overwrites || SameFile(drawing, line.exporting.target.path);
  }
  if (overwrites) return FailUsage("the output would overwrite the input");
  for (const auto &[path, extension] : {std::pair(&line.exporting.target.path, ".pdf"),
                                        {&line.convert.target.path, ".pdf"},
                                        {&line.info.preview, ".bmp"}}) {
    if (Outcome fits = CheckExtension(*path, extension); !fits.ok()) return fits;
  }
  const std::vector<std::string> &drawings = line.exporting.drawings;
  if (std::ranges::count(drawings, "-") > 1) return FailUsage("the standard input is one drawing only");
  if (line.exporting.target.replace && drawings.size() > 1) return FailUsage("--replace takes one drawing only");
  return {};
}

// The module takes a password up to a blank.
Outcome FindPassword(CommandLine &line) {
  std::string &password = line.reading.password;
  if (!line.passwordFile.empty()) {
    std::ifstream file(PathOf(line.passwordFile));
    if (!std::getline(file, password)) return Fail("cannot read a password from " + line.passwordFile);
    if (!password.empty() && password.back() == '\r') password.pop_back();
  }
  if (password.find(' ') != std::string::npos) return Fail("a password with blanks in it cannot be used");
  if (line.reading.classic && !password.empty()) return FailUsage("--classic takes no password");
  return {};
}

Outcome Run(CommandLine &line, const std::vector<CLI::App *> &commands, const Streams &streams) {
  std::vector<SettingValue> values;
  std::vector<std::string> assignments = line.settings;
  if (line.pdfa) assignments.emplace_back("PDFA=1");
  // Coordinate systems and glyphs are to come through, unless somebody says otherwise.
  if (commands[3]->parsed()) assignments.insert(assignments.begin(), {"GeoTiff=1", "EmbedFonts=1"});
  if (!commands[2]->parsed() && !line.reading.classic) assignments.insert(assignments.begin(), "ExtendedReading=1");
  for (const std::string &assignment : assignments) {
    if (Outcome parsed = ParseSetting(assignment, values); !parsed.ok()) return parsed;
  }
  if (Outcome resolved = ResolvePaths(line); !resolved.ok()) return resolved;
  const std::string modulePath = ModulePath(line);

  if (Outcome found = FindPassword(line); !found.ok()) return found;

  const InterruptGuard guard;
  SettingsForRun settings;
  if (std::string reason; !values.empty() && !settings.Store(values, reason)) return Fail(reason);
  Module module;
  if (Outcome loaded = module.Load(modulePath); !loaded.ok()) return loaded;
  const bool terminal = &streams.err == &std::cerr && ErrorStreamIsTerminal();
  const Session session{module, settings.RegistryPath(), streams, terminal && !line.quiet, line.quiet, line.reading};
  if (commands[0]->parsed()) return RunInfo(session, line.info);
  if (commands[1]->parsed()) return RunImport(session, line.import);
  if (commands[2]->parsed()) return RunExport(session, line.exporting);
  return RunConvert(session, line.convert);
}

}  // namespace

int RunTool(const std::vector<std::string> &words, const Streams &streams) {
  CLI::App app("kapdf: PDF pages as drawing elements in millimetres, and drawings as PDF", "kapdf");
  CommandLine line;
  const std::vector<CLI::App *> commands = Declare(app, line);
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::Success &help) {
    return app.exit(help, streams.out, streams.err);
  } catch (const CLI::RequiredError &error) {
    const bool unknown = app.get_subcommands().empty() && !words.empty() && !words[0].starts_with('-');
    streams.err << "kapdf: " << (unknown ? "there is no command \"" + words[0] + "\"" : error.what())
                << " (kapdf --help tells more)\n";
    return kExitUsage;
  } catch (const CLI::ParseError &error) {
    streams.err << "kapdf: " << error.what() << " (kapdf --help tells more)\n";
    return kExitUsage;
  }
  Outcome outcome;
  try {
    outcome = Run(line, commands, streams);
  } catch (const std::bad_alloc &) {
    outcome = Fail("there is not enough memory for this");
  }
  if (!outcome.ok()) streams.err << "kapdf: " << outcome.sentence << "\n";
  return outcome.status;
}

}  // namespace kapdf::tool

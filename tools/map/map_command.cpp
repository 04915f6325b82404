// `kzgis map`: arguments in, a picture out.

#include "tools/map/map_command.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/map/bank_layer.h"
#include "tools/map/layer.h"
#include "tools/map/map_chart.h"
#include "tools/map/painter.h"
#include "tools/map/style.h"
#include "tools/map/triangle_sides.h"
#include "tools/picture/render.h"
#include "tools/support/command_error.h"
#include "tools/support/input_file.h"
#include "tools/support/number_text.h"
#include "tools/support/output_file.h"
#include "tools/support/output_format.h"
#include "tools/support/progress.h"
#include "tools/support/projection_options.h"
#include "tools/support/report.h"

namespace kzgis::map {
namespace {

using tools::CommandError;

struct MapOptions {
  std::vector<std::string> files;
  std::string output;
  std::string format;
  std::vector<Role> styles;
  MapRequest request;
  std::string size;
  double graticule_deg = 15.0;
  std::string title;
  bool mesh = false;
  std::string bank;
  std::vector<BankTheme> bank_themes;
  std::int32_t precision_arcsec = 0;
};

constexpr const char* kExamples = R"(
Examples:
  The countries of the world, each in a tint of its own:
    kzgis map ne_110m_countries.shp --style countries -o world.png
  Land, lakes and rivers on the globe, seen from above Cairo:
    kzgis map land.shp lakes.shp rivers.shp --style land,water,river \
        --to globe --base 30,31 -o globe.svg
  Europe on a cone, for a printer:
    kzgis map countries.shp --style countries --to albers --parallels 43,62 \
        --box 34,-12,71,42 -o europe.pdf
  The countries as a mesh of triangles:
    kzgis map countries.shp --style countries --mesh -o mesh.png
  The Arctic, within 40 degrees of the pole, to a pipe:
    kzgis map land.shp --to stereographic --base 90,0 --horizon 40 \
        -o - --format png | display

  Coasts and great rivers around the North Sea, from a bank that kzgis pack made:
    kzgis map --bank bank --theme coastal:1-3 --theme river:1 --to albers \
        --parallels 45,62 --box 47,-12,64,16 -o north_sea.svg

Styles, one per FILE and in their order:
  polygons  land (the usual), countries, water; as outlines coast, river, border,
            province
  lines     coast (the usual), river, border, province
  points    places
The lines of a data bank come above all files: coastal as coast, river as river,
geographic as border, political as province.

Filled layers lie under the graticule, lines and points above it, later files
above earlier ones.

The longitude of --base is the middle of every map; with --box and without --base,
the middle of the box is.  The latitude of --base is the centre of gnomonic,
stereographic, orthographic, postel, lambert azimuthal and globe, shapes bonne, says
which pole werner is about and on which side of the equator the usual parallels of
the conics lie, and changes nothing else.

Coordinates must be degrees.  Null and empty records are skipped.  A record, or a file
of the bank, that is damaged is reported; the picture shows what can be read; the exit
code is 1.
)";

const tools::OutputFormats<tools::PictureFormat>& formats() {
  static const tools::OutputFormats<tools::PictureFormat> known{{"png", tools::PictureFormat::png},
                                                                {"svg", tools::PictureFormat::svg},
                                                                {"pdf", tools::PictureFormat::pdf}};
  return known;
}

// A Cairo image is at most 32,767 pixels wide; four bytes a pixel set the other limit.
constexpr int kLongestSide = 20000;
constexpr double kMostPixels = 2e8;

/// A side of the picture in pixels; nothing when it is none.
std::optional<int> parse_side(std::string_view text) {
  int side = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (side < 16 || side > kLongestSide) return std::nullopt;
  return side;
}

/// Empty when the size is right, else what is wrong with it: a CLI11 check.
std::string check_size(const std::string& text) {
  const std::size_t x = text.find('x');
  if (x != std::string::npos) {
    const auto width = parse_side(std::string_view(text).substr(0, x));
    const auto height = parse_side(std::string_view(text).substr(x + 1));
    if (width && height && static_cast<double>(*width) * *height <= kMostPixels) return {};
  }
  return "'" + text +
         "' is no size; one looks like 1600x900, each side 16 to 20000, 200 million pixels at most";
}

/// Reads "S,W,N,E".  Throws `UsageError`.
Box parse_box(const std::string& text) {
  std::vector<double> sides;
  std::istringstream fields(text);
  for (std::string field; std::getline(fields, field, ',');) {
    const std::optional<double> side = tools::parse_number(field);
    if (!side) break;
    sides.push_back(*side);
  }
  const bool complete = sides.size() == 4 && fields.eof();
  if (!complete || std::abs(sides[1]) > 720.0 || std::abs(sides[3]) > 720.0 ||
      !(-90.0 <= sides[0] && sides[0] < sides[2] && sides[2] <= 90.0)) {
    throw tools::UsageError(
        "--box", "'" + text + "' is no box; one looks like 34,-12,71,42: south, west, north, east");
  }
  return {sides[1], sides[0], sides[3], sides[2]};
}

/// Reads "land,water".  Throws `UsageError`.
std::vector<Role> parse_styles(const std::string& text) {
  std::vector<Role> styles;
  std::istringstream names(text);
  for (std::string name; std::getline(names, name, ',');) {
    const std::optional<Role> role = role_named(name);
    if (!role) {
      throw tools::UsageError("--style", "'" + name + "' is no style; there are " + role_names());
    }
    styles.push_back(*role);
  }
  return styles;
}

/// The size asked for, which `check_size` let pass, or the usual one.
void set_size(Sheet& sheet, const Chart& chart, const std::string& size) {
  if (size.empty()) {
    set_usual_size(sheet, chart);
    return;
  }
  const std::size_t x = size.find('x');
  sheet.width = parse_side(std::string_view(size).substr(0, x)).value_or(0);
  sheet.height = parse_side(std::string_view(size).substr(x + 1)).value_or(0);
}

const char* kind_name(LayerKind kind) {
  switch (kind) {
    case LayerKind::polygons:
      return "polygons";
    case LayerKind::lines:
      return "lines";
    default:
      return "points";
  }
}

/// A record that cannot be triangulated is complained of and drawn without triangles.
void add_mesh(const std::string& file, StyledLayer& styled, const tools::Complain& complain) {
  const Layer& layer = styled.layer;
  if (layer.kind != LayerKind::polygons) return;
  tools::Progress progress("triangulating " + file, layer.records.size());
  for (std::size_t i = 0; i < layer.records.size(); ++i) {
    progress.update(i);
    TriangleSides sides = triangle_sides(layer.records[i].rings());
    if (sides.flaw) {
      complain(file + ": record " + std::to_string(layer.numbers[i]) + ": " + sides.flaw.message);
    }
    styled.mesh.push_back(std::move(sides.lines));
  }
}

/// The lines of a data bank, above whatever files give.
void add_bank_layers(const MapOptions& options, std::vector<StyledLayer>& layers,
                     const tools::Complain& complain) {
  const std::string directory = tools::expanded(options.bank);
  for (const BankTheme& theme :
       options.bank_themes.empty() ? all_bank_themes() : options.bank_themes) {
    layers.push_back({read_bank_layer(directory, theme, options.precision_arcsec, complain),
                      bank_role(theme.theme)});
  }
}

/// Reads every layer, the lowest first, before any of the picture is drawn: bad input leaves no
/// file.
std::vector<StyledLayer> read_layers(const MapOptions& options, const tools::Complain& complain) {
  if (options.styles.size() > options.files.size()) {
    throw tools::UsageError("--style", std::to_string(options.styles.size()) + " styles for " +
                                           std::to_string(options.files.size()) + " files");
  }
  std::vector<StyledLayer> layers;
  for (std::size_t i = 0; i < options.files.size(); ++i) {
    Layer layer = read_layer(options.files[i], complain);
    Role role = usual_role(layer.kind);
    if (i < options.styles.size()) {
      role = options.styles[i];
      if (!suits(role, layer.kind)) {
        throw CommandError(options.files[i] + ": holds " + kind_name(layer.kind) +
                           ", which cannot be drawn as " + role_name(role));
      }
    }
    StyledLayer styled{std::move(layer), role};
    if (options.mesh) add_mesh(options.files[i], styled, complain);
    layers.push_back(std::move(styled));
  }
  if (!options.bank.empty()) add_bank_layers(options, layers, complain);
  return layers;
}

/// Returns the exit code: 0 when everything could be read.
int run(const MapOptions& options) {
  if (options.files.empty() && options.bank.empty()) {
    throw tools::UsageError("FILE", "a shapefile to draw is missing, or --bank");
  }
  const tools::PictureFormat format = formats().choose(options.output, options.format);
  const Chart chart = map_chart(options.request);
  Sheet sheet;
  sheet.graticule_deg = options.graticule_deg;
  sheet.title = options.title;
  sheet.globe = options.request.type == GlobeProj;
  set_size(sheet, chart, options.size);
  tools::Complaints complaints;
  const std::vector<StyledLayer> layers = read_layers(options, complaints.receiver());

  const Page page = lay_out(chart, sheet);
  tools::OutputFile output(options.output);
  tools::render(output.stream(), format, sheet.width, sheet.height,
                [&](cairo_t* cairo) { paint(cairo, page, sheet, layers); });
  output.commit();
  return complaints.exit_code();
}

}  // namespace
}  // namespace kzgis::map

namespace kzgis::tools {

void add_map_command(CLI::App& app, int& exit_code) {
  auto options = std::make_shared<map::MapOptions>();
  CLI::App* command =
      app.add_subcommand("map", "Draw shapefiles and outlines as a map, in any projection");
  command->add_option("FILE", options->files, "Shapefiles, the lowest layer first")
      ->type_name(".shp");
  command
      ->add_option("-o,--output", options->output,
                   "The picture: .png, .svg or .pdf; - for standard output")
      ->required()
      ->type_name("PICTURE");
  add_projection_options(*command, options->request);
  command
      ->add_option("--horizon", options->request.horizon_deg,
                   "How far an azimuthal map reaches from its centre, in degrees: gnomonic 60 "
                   "unless said, stereographic 90, orthographic and globe 90, postel and "
                   "lambert azimuthal 180")
      ->type_name("DEG");
  command
      ->add_option_function<std::string>(
          "--box",
          [options](const std::string& text) { options->request.box = map::parse_box(text); },
          "Show this part of a map that is not azimuthal, in degrees")
      ->type_name("S,W,N,E");
  command
      ->add_option("--size", options->size,
                   "Size in pixels (points in a PDF); the map is fitted and centred.  Without, "
                   "1600 on the long side")
      ->type_name("WxH")
      ->check(map::check_size);
  command
      ->add_option("--graticule", options->graticule_deg,
                   "Degrees between meridians and parallels, from 1/60 (0.0167) to 90; 0 for none")
      ->type_name("DEG")
      ->capture_default_str()
      ->check([](const std::string& text) {
        const std::optional<double> step = parse_number(text);
        constexpr double kMinute = 1.0 / 60.0;
        if (step && (*step == 0.0 || (*step >= kMinute && *step <= 90.0))) return std::string();
        return "'" + text + "' is no step; it is 0, or between 1/60 (0.0167) and 90 degrees";
      });
  command
      ->add_option_function<std::string>(
          "--style",
          [options](const std::string& text) { options->styles = map::parse_styles(text); },
          "One per FILE: " + map::role_names())
      ->type_name("ROLE,...");
  CLI::Option* const bank = command
                                ->add_option("--bank", options->bank,
                                             "Draw outlines from the data bank in this directory")
                                ->type_name("DIR");
  command
      ->add_option_function<std::vector<std::string>>(
          "--theme",
          [options](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) {
              options->bank_themes.push_back(map::parse_bank_theme(text));
            }
          },
          "These outlines of the bank, all levels or some: coastal, river:1, coastal:1-3; "
          "everything unless said")
      ->allow_extra_args(false)
      ->needs(bank)
      ->type_name("NAME[:A-B]");
  command
      ->add_option("--precision", options->precision_arcsec,
                   "Leave out points of the bank nearer than this to the one before")
      ->check(CLI::Range(0, 1296000))
      ->needs(bank)
      ->type_name("ARCSEC")
      ->capture_default_str();
  map::formats().add_option(*command, options->format);
  command->add_option("--title", options->title, "A line of text above the map")->type_name("TEXT");
  command->add_flag("--mesh", options->mesh, "Draw the triangles that polygons are made of");
  command->footer(map::kExamples);
  command->callback([options, &exit_code] { exit_code = map::run(*options); });
}

}  // namespace kzgis::tools

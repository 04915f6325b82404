// A projection that draws: its limits, and what it makes of a place.

#ifndef KZGIS_TOOLS_MAP_PLANE_H
#define KZGIS_TOOLS_MAP_PLANE_H

#include <kzgis/chart.h>

#include <optional>

#include "tools/map/clip.h"
#include "tools/map/geo.h"
#include "tools/support/projection_options.h"

namespace kzgis::map {

/// What the user asks of a map; what is left out gets the projection's own default, and the base
/// the middle of the box where there is one.  Pictures have no radius.
struct PlaneRequest : tools::ProjectionOptions {
  std::optional<double> horizon_deg = std::nullopt;  ///< how far an azimuthal map reaches
  std::optional<Window> box = std::nullopt;          ///< what a window map shows, west to east
};

/// A point of the map plane, in globe radii, y upwards.
struct PlanePoint {
  double x;
  double y;
  bool visible;
};

/// The plane that a projection draws on, and how much of it the map shows.
///
/// Positions are given in map longitudes: relative to the base meridian.
///
/// A *window* map (cylindrical, conic and their relatives) shows a rectangle in degrees and
/// is torn at its sides.  A *disc* map (azimuthal, globe) shows what lies within an angle of
/// the base point and has no tear: beyond its limb the plane goes on, with points keeping
/// their direction and moving out as they go further round the globe, so that a ring which
/// leaves the map comes back where it should.  There the antipode alone has no place.
class Plane {
 public:
  /// Throws `UsageError` when the request makes no map.
  explicit Plane(const PlaneRequest& request);

  bool is_disc() const { return limb_deg_ > 0.0; }
  projType type() const { return type_; }
  double base_lat() const { return base_lat_; }
  double base_lon() const { return base_lon_; }

  /// What a window map shows; meaningless for a disc.
  const Window& window() const { return window_; }
  /// How far a disc reaches from the base point in degrees; 0 for a window.
  double limb_deg() const { return limb_deg_; }
  /// The disc's radius on the plane; 0 for a window.
  double limb_radius() const { return limb_radius_; }

  /// Where a position lands.  Outside the window, and at a disc's antipode, the coordinates
  /// may be anything, not finite ones included.
  PlanePoint place(const Geo& position) const;

  /// The position that lies `angle_deg` from the base point, towards `azimuth_deg` (0 is
  /// up, 90 right).
  Geo position_at(double angle_deg, double azimuth_deg) const;

 private:
  void set_up_disc(const PlaneRequest& request);
  void set_up_window(const PlaneRequest& request);
  void narrow_window(const Window& box);
  PlanePoint place_on_disc(const Geo& position) const;

  projType type_;
  double base_lat_ = 0.0;
  double base_lon_ = 0.0;
  Window window_{-180.0, 180.0, -90.0, 90.0};
  double limb_deg_ = 0.0;
  double limb_radius_ = 0.0;
  // Both take longitudes that count from the base.
  Chart chart_;
  Chart directions_;  ///< Postel's: as far from the middle as on the globe, in the same direction
};

}  // namespace kzgis::map

#endif

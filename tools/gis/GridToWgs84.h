// Grid coordinates to longitude and latitude on WGS 84, through PROJ.
//
// GeoJSON (RFC 7946) has one coordinate reference system: WGS 84 longitude and latitude, in that
// order. A file written in grid metres is read by GIS software as degrees and lands in the wrong
// place (British National Grid metres read as degrees fall off the coast of Africa), so grid
// positions are transformed before they are written. PROJ picks the most accurate transformation
// that its installed data allow for the area: for British National Grid that is the OSTN15 grid
// shift where the grid file is installed (a few centimetres), else the Ordnance Survey's
// seven-parameter Helmert transformation (a few metres, enough to find a hole on a map).
//
// **Example**:
//
//   const xklink::GridToWgs84 toWgs84(27700);
//   const xklink::LonLat p = toWgs84(651409.903, 313177.270); // p.lon 1.716..., p.lat 52.657...
#pragma once

#include <memory>

namespace xklink {

struct LonLat {
  double lon = 0.0; // degrees east
  double lat = 0.0; // degrees north
};

class GridToWgs84 {
public:
  // std::invalid_argument naming the code when PROJ does not know the EPSG code or cannot
  // transform from it to WGS 84.
  explicit GridToWgs84(int epsg);
  ~GridToWgs84();
  GridToWgs84(const GridToWgs84&) = delete;
  GridToWgs84& operator=(const GridToWgs84&) = delete;

  // Easting and northing (x and y, whatever the axis order of the EPSG definition) to longitude
  // and latitude; std::domain_error when the point lies where the grid's projection is undefined.
  LonLat operator()(double easting, double northing) const;

private:
  struct Transform;
  std::unique_ptr<Transform> m_transform;
};

} // namespace xklink

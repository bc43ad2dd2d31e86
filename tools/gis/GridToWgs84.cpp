#include "GridToWgs84.h"

#include "SharedLibrary.h"

#include <cmath>
#include <proj.h>
#include <stdexcept>
#include <string>

namespace xklink {

namespace {

// The functions of PROJ's C interface that the transformation uses.
struct ProjApi {
  SharedLibrary library{XKLINKDC_PROJ_SONAME, "GeoJSON output"};
#define XKLINK_PROJ(name) decltype(&::name) name = library.Function<decltype(&::name)>(#name)
  XKLINK_PROJ(proj_context_create);
  XKLINK_PROJ(proj_context_destroy);
  XKLINK_PROJ(proj_context_set_enable_network);
  XKLINK_PROJ(proj_log_level);
  XKLINK_PROJ(proj_create_crs_to_crs);
  XKLINK_PROJ(proj_normalize_for_visualization);
  XKLINK_PROJ(proj_destroy);
  XKLINK_PROJ(proj_trans);
#undef XKLINK_PROJ
};

const ProjApi& Proj() {
  static const ProjApi api;
  return api;
}

} // namespace

struct GridToWgs84::Transform {
  const ProjApi& proj = Proj();
  PJ_CONTEXT* context = nullptr;
  PJ* operation = nullptr;

  ~Transform() {
    if (operation != nullptr) {
      proj.proj_destroy(operation);
    }
    if (context != nullptr) {
      proj.proj_context_destroy(context);
    }
  }
};

GridToWgs84::GridToWgs84(int epsg) : m_transform(std::make_unique<Transform>()) {
  const ProjApi& proj = m_transform->proj;
  const std::string source = "EPSG:" + std::to_string(epsg);
  m_transform->context = proj.proj_context_create();
  if (m_transform->context == nullptr) {
    throw std::runtime_error("PROJ could not start");
  }
  // Only the data installed on the machine: a section is never made to depend on the network.
  // PROJ's own log is silenced; its errors come back in the exception.
  proj.proj_context_set_enable_network(m_transform->context, 0);
  proj.proj_log_level(m_transform->context, PJ_LOG_NONE);
  PJ* raw = proj.proj_create_crs_to_crs(m_transform->context, source.c_str(), "EPSG:4326", nullptr);
  if (raw == nullptr) {
    throw std::invalid_argument(source +
                                " is not a coordinate reference system that PROJ can transform "
                                "to WGS 84");
  }
  // EPSG:4326 is latitude first, and some grids (Hong Kong 1980) are northing first; normalised,
  // the operation takes easting, northing and gives longitude, latitude.
  m_transform->operation = proj.proj_normalize_for_visualization(m_transform->context, raw);
  proj.proj_destroy(raw);
  if (m_transform->operation == nullptr) {
    throw std::invalid_argument("PROJ cannot order the axes of " + source);
  }
}

GridToWgs84::~GridToWgs84() = default;

LonLat GridToWgs84::operator()(double easting, double northing) const {
  PJ_COORD in{};
  in.xyzt = {easting, northing, 0.0, 0.0};
  const PJ_COORD out = m_transform->proj.proj_trans(m_transform->operation, PJ_FWD, in);
  if (!std::isfinite(out.lpzt.lam) || !std::isfinite(out.lpzt.phi)) {
    throw std::domain_error("the point " + std::to_string(easting) + ", " +
                            std::to_string(northing) + " cannot be placed on WGS 84");
  }
  return {out.lpzt.lam, out.lpzt.phi};
}

} // namespace xklink

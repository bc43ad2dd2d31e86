#include "GeoPackage.h"

#include "SharedLibrary.h"

#include <atomic>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>
#include <stdexcept>
#include <string>
#include <utility>

namespace xklink {

namespace {

// The functions of GDAL's C interface that the writer uses.
struct GdalApi {
  SharedLibrary library{XKLINKDC_GDAL_SONAME, "GeoPackage output"};
#define XKLINK_GDAL(name) decltype(&::name) name = library.Function<decltype(&::name)>(#name)
  XKLINK_GDAL(GDALAllRegister);
  XKLINK_GDAL(GDALGetDriverByName);
  XKLINK_GDAL(GDALCreate);
  XKLINK_GDAL(GDALClose);
  XKLINK_GDAL(GDALDatasetCreateLayer);
  XKLINK_GDAL(GDALDatasetStartTransaction);
  XKLINK_GDAL(GDALDatasetCommitTransaction);
  XKLINK_GDAL(OSRNewSpatialReference);
  XKLINK_GDAL(OSRImportFromEPSG);
  XKLINK_GDAL(OSRSetAxisMappingStrategy);
  XKLINK_GDAL(OSRRelease);
  XKLINK_GDAL(OGR_Fld_Create);
  XKLINK_GDAL(OGR_Fld_Destroy);
  XKLINK_GDAL(OGR_L_CreateField);
  XKLINK_GDAL(OGR_L_GetLayerDefn);
  XKLINK_GDAL(OGR_L_CreateFeature);
  XKLINK_GDAL(OGR_F_Create);
  XKLINK_GDAL(OGR_F_Destroy);
  XKLINK_GDAL(OGR_F_SetFieldString);
  XKLINK_GDAL(OGR_F_SetFieldDouble);
  XKLINK_GDAL(OGR_F_SetFieldInteger);
  XKLINK_GDAL(OGR_F_SetGeometryDirectly);
  XKLINK_GDAL(OGR_G_CreateGeometry);
  XKLINK_GDAL(OGR_G_AddPoint);
  XKLINK_GDAL(OGR_G_AddPoint_2D);
  XKLINK_GDAL(VSIGetMemFileBuffer);
  XKLINK_GDAL(VSIUnlink);
  XKLINK_GDAL(CPLGetLastErrorMsg);
  XKLINK_GDAL(CPLGetLastErrorType);
  XKLINK_GDAL(CPLErrorReset);
  XKLINK_GDAL(CPLPushErrorHandler);
  XKLINK_GDAL(CPLPopErrorHandler);
  XKLINK_GDAL(CPLQuietErrorHandler);
#undef XKLINK_GDAL

  GdalApi() {
    GDALAllRegister();
  }
};

const GdalApi& Gdal() {
  static const GdalApi api;
  return api;
}

// Builds one GeoPackage in GDAL's in-memory file system. GDAL's messages, which it would print on
// standard error, go into the exceptions instead; the handler, the dataset and the memory are
// released on every way out.
class MemoryGeoPackage {
public:
  MemoryGeoPackage() : m_api(Gdal()) {
    static std::atomic<unsigned> serial{0};
    m_path = "/vsimem/xklink-" + std::to_string(serial++) + ".gpkg";
    m_api.CPLPushErrorHandler(m_api.CPLQuietErrorHandler);
    m_api.CPLErrorReset();
    GDALDriverH driver = m_api.GDALGetDriverByName("GPKG");
    if (driver != nullptr) {
      m_dataset = m_api.GDALCreate(driver, m_path.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    }
    if (m_dataset == nullptr) {
      const std::string why = m_api.CPLGetLastErrorMsg();
      m_api.CPLPopErrorHandler();
      throw std::runtime_error("GeoPackage: GDAL cannot create the file: " + why);
    }
  }
  ~MemoryGeoPackage() {
    if (m_dataset != nullptr) {
      m_api.GDALClose(m_dataset);
    }
    if (m_grid != nullptr) {
      m_api.OSRRelease(m_grid);
    }
    m_api.VSIUnlink(m_path.c_str());
    m_api.CPLPopErrorHandler();
  }
  MemoryGeoPackage(const MemoryGeoPackage&) = delete;
  MemoryGeoPackage& operator=(const MemoryGeoPackage&) = delete;

  const GdalApi& Api() const { return m_api; }

  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error("GeoPackage: " + what + ": " + m_api.CPLGetLastErrorMsg());
  }

  void SetGrid(int epsg) {
    m_grid = m_api.OSRNewSpatialReference(nullptr);
    if (m_grid == nullptr || m_api.OSRImportFromEPSG(m_grid, epsg) != OGRERR_NONE) {
      throw std::invalid_argument("EPSG:" + std::to_string(epsg) +
                                  " is not a coordinate reference system that GDAL knows");
    }
    // x is the easting whatever the axis order of the EPSG definition.
    m_api.OSRSetAxisMappingStrategy(m_grid, OAMS_TRADITIONAL_GIS_ORDER);
  }

  OGRLayerH AddLayer(const char* name, OGRwkbGeometryType geometry,
                     const std::vector<std::pair<const char*, OGRFieldType>>& fields) {
    OGRLayerH layer = m_api.GDALDatasetCreateLayer(m_dataset, name, m_grid, geometry, nullptr);
    if (layer == nullptr) {
      Fail(std::string("cannot create the layer ") + name);
    }
    for (const auto& [field, type] : fields) {
      OGRFieldDefnH definition = m_api.OGR_Fld_Create(field, type);
      const OGRErr error = m_api.OGR_L_CreateField(layer, definition, TRUE);
      m_api.OGR_Fld_Destroy(definition);
      if (error != OGRERR_NONE) {
        Fail(std::string("cannot add the field ") + field);
      }
    }
    return layer;
  }

  void StartTransaction() {
    if (m_api.GDALDatasetStartTransaction(m_dataset, FALSE) != OGRERR_NONE) {
      Fail("cannot start writing");
    }
  }

  // Commits, closes the dataset and returns the bytes of the file.
  std::string Finish() {
    if (m_api.GDALDatasetCommitTransaction(m_dataset) != OGRERR_NONE) {
      Fail("cannot complete writing");
    }
    m_api.CPLErrorReset();
    m_api.GDALClose(m_dataset);
    m_dataset = nullptr;
    if (m_api.CPLGetLastErrorType() >= CE_Failure) {
      Fail("cannot complete the file");
    }
    vsi_l_offset size = 0;
    GByte* data = m_api.VSIGetMemFileBuffer(m_path.c_str(), &size, FALSE);
    if (data == nullptr) {
      Fail("the file is missing from memory");
    }
    return std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
  }

private:
  const GdalApi& m_api;
  std::string m_path;
  GDALDatasetH m_dataset = nullptr;
  OGRSpatialReferenceH m_grid = nullptr;
};

// A feature of `layer`, freed on every way out.
class Feature {
public:
  Feature(const MemoryGeoPackage& file, OGRLayerH layer)
      : m_file(file), m_layer(layer),
        m_feature(file.Api().OGR_F_Create(file.Api().OGR_L_GetLayerDefn(layer))) {}
  ~Feature() { m_file.Api().OGR_F_Destroy(m_feature); }
  Feature(const Feature&) = delete;
  Feature& operator=(const Feature&) = delete;

  Feature& Set(int field, const std::string& value) {
    m_file.Api().OGR_F_SetFieldString(m_feature, field, value.c_str());
    return *this;
  }
  Feature& Set(int field, double value) {
    m_file.Api().OGR_F_SetFieldDouble(m_feature, field, value);
    return *this;
  }
  Feature& Set(int field, int value) {
    m_file.Api().OGR_F_SetFieldInteger(m_feature, field, value);
    return *this;
  }
  // Takes the geometry over.
  void Add(OGRGeometryH geometry) {
    m_file.Api().OGR_F_SetGeometryDirectly(m_feature, geometry);
    if (m_file.Api().OGR_L_CreateFeature(m_layer, m_feature) != OGRERR_NONE) {
      m_file.Fail("cannot add a feature");
    }
  }

private:
  const MemoryGeoPackage& m_file;
  OGRLayerH m_layer;
  OGRFeatureH m_feature;
};

} // namespace

std::string GeoPackageBytes(int epsg, const std::vector<GisHole>& holes,
                            const std::vector<GisLine>& lines) {
  MemoryGeoPackage file;
  const GdalApi& api = file.Api();
  file.SetGrid(epsg);
  OGRLayerH holeLayer = file.AddLayer(
      "holes", wkbPoint, {{"name", OFTString}, {"ground_level", OFTReal}, {"depth", OFTReal}});
  OGRLayerH lineLayer = file.AddLayer("lines", wkbLineString25D,
                                      {{"from", OFTString},
                                       {"to", OFTString},
                                       {"type", OFTInteger},
                                       {"up", OFTString},
                                       {"down", OFTString}});
  // One transaction: SQLite commits each insert on its own otherwise, a hundred times slower.
  file.StartTransaction();
  for (const GisHole& hole : holes) {
    OGRGeometryH point = api.OGR_G_CreateGeometry(wkbPoint);
    api.OGR_G_AddPoint_2D(point, hole.easting, hole.northing);
    Feature(file, holeLayer)
        .Set(0, hole.name)
        .Set(1, hole.groundLevel)
        .Set(2, hole.depth)
        .Add(point);
  }
  for (const GisLine& line : lines) {
    OGRGeometryH geometry = api.OGR_G_CreateGeometry(wkbLineString25D);
    api.OGR_G_AddPoint(geometry, line.p1.x, line.p1.y, line.p1.z);
    api.OGR_G_AddPoint(geometry, line.p2.x, line.p2.y, line.p2.z);
    Feature(file, lineLayer)
        .Set(0, line.from)
        .Set(1, line.to)
        .Set(2, line.type)
        .Set(3, line.up)
        .Set(4, line.down)
        .Add(geometry);
  }
  return file.Finish();
}

} // namespace xklink

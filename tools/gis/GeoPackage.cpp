#include "GeoPackage.h"

#include <atomic>
#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <mutex>
#include <ogrsf_frmts.h>
#include <stdexcept>
#include <string>

namespace xklink {

namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error("GeoPackage: " + what + ": " + CPLGetLastErrorMsg());
}

// GDAL reports through a global handler that prints to standard error; its messages are taken into
// the exceptions instead, and the handler is restored on every way out.
class QuietGdal {
public:
  QuietGdal() {
    static std::once_flag registered;
    std::call_once(registered, [] { GDALAllRegister(); });
    CPLPushErrorHandler(CPLQuietErrorHandler);
    CPLErrorReset();
  }
  ~QuietGdal() { CPLPopErrorHandler(); }
  QuietGdal(const QuietGdal&) = delete;
  QuietGdal& operator=(const QuietGdal&) = delete;
};

// A dataset in GDAL's in-memory file system, closed and its memory freed on every way out.
class MemoryDataset {
public:
  explicit MemoryDataset(std::string path) : m_path(std::move(path)) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    if (driver == nullptr) {
      Fail("GDAL has no GPKG driver");
    }
    m_dataset = driver->Create(m_path.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (m_dataset == nullptr) {
      Fail("cannot create the file");
    }
  }
  ~MemoryDataset() {
    if (m_dataset != nullptr) {
      GDALClose(m_dataset);
    }
    VSIUnlink(m_path.c_str());
  }
  MemoryDataset(const MemoryDataset&) = delete;
  MemoryDataset& operator=(const MemoryDataset&) = delete;

  GDALDataset& operator*() { return *m_dataset; }

  // Closes the dataset and returns the bytes of the file.
  std::string Finish() {
    CPLErrorReset();
    GDALClose(m_dataset);
    m_dataset = nullptr;
    if (CPLGetLastErrorType() == CE_Failure || CPLGetLastErrorType() == CE_Fatal) {
      Fail("cannot complete the file");
    }
    vsi_l_offset size = 0;
    GByte* data = VSIGetMemFileBuffer(m_path.c_str(), &size, FALSE);
    if (data == nullptr) {
      Fail("the file is missing from memory");
    }
    return std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(size));
  }

private:
  std::string m_path;
  GDALDataset* m_dataset = nullptr;
};

OGRLayer& AddLayer(GDALDataset& dataset, const char* name, OGRSpatialReference& grid,
                   OGRwkbGeometryType geometry,
                   const std::vector<std::pair<const char*, OGRFieldType>>& fields) {
  OGRLayer* layer = dataset.CreateLayer(name, &grid, geometry, nullptr);
  if (layer == nullptr) {
    Fail(std::string("cannot create the layer ") + name);
  }
  for (const auto& [field, type] : fields) {
    OGRFieldDefn definition(field, type);
    if (layer->CreateField(&definition) != OGRERR_NONE) {
      Fail(std::string("cannot add the field ") + field);
    }
  }
  return *layer;
}

void Add(OGRLayer& layer, OGRFeature& feature) {
  if (layer.CreateFeature(&feature) != OGRERR_NONE) {
    Fail(std::string("cannot add a feature to ") + layer.GetName());
  }
}

} // namespace

std::string GeoPackageBytes(int epsg, const std::vector<GisHole>& holes,
                            const std::vector<GisLine>& lines) {
  const QuietGdal quiet;
  OGRSpatialReference grid;
  if (grid.importFromEPSG(epsg) != OGRERR_NONE) {
    throw std::invalid_argument("EPSG:" + std::to_string(epsg) +
                                " is not a coordinate reference system that GDAL knows");
  }
  // x is the easting whatever the axis order of the EPSG definition.
  grid.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);

  static std::atomic<unsigned> serial{0};
  MemoryDataset dataset("/vsimem/xklink-" + std::to_string(serial++) + ".gpkg");
  OGRLayer& holeLayer =
      AddLayer(*dataset, "holes", grid, wkbPoint,
               {{"name", OFTString}, {"ground_level", OFTReal}, {"depth", OFTReal}});
  OGRLayer& lineLayer = AddLayer(*dataset, "lines", grid, wkbLineString25D,
                                 {{"from", OFTString},
                                  {"to", OFTString},
                                  {"type", OFTInteger},
                                  {"up", OFTString},
                                  {"down", OFTString}});
  // One transaction: SQLite commits each insert on its own otherwise, a hundred times slower.
  if ((*dataset).StartTransaction() != OGRERR_NONE) {
    Fail("cannot start writing");
  }
  for (const GisHole& hole : holes) {
    OGRFeature feature(holeLayer.GetLayerDefn());
    feature.SetField("name", hole.name.c_str());
    feature.SetField("ground_level", hole.groundLevel);
    feature.SetField("depth", hole.depth);
    OGRPoint point(hole.easting, hole.northing);
    feature.SetGeometry(&point);
    Add(holeLayer, feature);
  }
  for (const GisLine& line : lines) {
    OGRFeature feature(lineLayer.GetLayerDefn());
    feature.SetField("from", line.from.c_str());
    feature.SetField("to", line.to.c_str());
    feature.SetField("type", line.type);
    feature.SetField("up", line.up.c_str());
    feature.SetField("down", line.down.c_str());
    OGRLineString geometry;
    geometry.addPoint(line.p1.x, line.p1.y, line.p1.z);
    geometry.addPoint(line.p2.x, line.p2.y, line.p2.z);
    feature.SetGeometry(&geometry);
    Add(lineLayer, feature);
  }
  if ((*dataset).CommitTransaction() != OGRERR_NONE) {
    Fail("cannot complete writing");
  }
  return dataset.Finish();
}

} // namespace xklink

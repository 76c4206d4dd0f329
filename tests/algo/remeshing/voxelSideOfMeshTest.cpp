// The voxel classes against CGAL's side-of-mesh test at every voxel centre; the only
// test that links CGAL.
#include <CGAL/Side_of_triangle_mesh.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#include <gtest/gtest.h>

#include <vector>

#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/voxelizationFunctor.h"
#include "support/meshes.h"

using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;
using kernel = CGAL::Simple_cartesian<double>;
using cgalMesh = CGAL::Surface_mesh<kernel::Point_3>;

namespace {

void checkAgainstCgal(const editMesh& m, unsigned resolution) {
  std::vector<p3> positions;
  std::vector<unsigned> t;
  INTERNAL::toTriangleSoup(m, positions, t);
  cgalMesh cm;
  std::vector<cgalMesh::Vertex_index> id;
  for (const p3& p : positions) id.push_back(cm.add_vertex(kernel::Point_3(p.x, p.y, p.z)));
  for (size_t k = 0; k < t.size(); k += 3) cm.add_face(id[t[k]], id[t[k + 1]], id[t[k + 2]]);
  ASSERT_EQ(cm.number_of_faces(), t.size() / 3);
  const CGAL::Side_of_triangle_mesh<cgalMesh, kernel> side(cm);

  volumeDescriptor v;
  ASSERT_TRUE(
      voxelizationFunctor()(positions, std::vector<int>(t.begin(), t.end()), resolution, v));
  uint64_t inside = 0, outside = 0;
  for (uint64_t k = 0; k < v.dimZ; ++k)
    for (uint64_t j = 0; j < v.dimY; ++j)
      for (uint64_t i = 0; i < v.dimX; ++i) {
        const unsigned char value = v.at(i, j, k);
        if (value == VOXEL_ON_SURFACE) continue;
        const auto c = v.getVoxelCenter(i, j, k);
        const CGAL::Bounded_side s = side(kernel::Point_3(c.x, c.y, c.z));
        if (value == VOXEL_INSIDE) {
          ++inside;
          EXPECT_EQ(s, CGAL::ON_BOUNDED_SIDE) << i << " " << j << " " << k;
        } else {
          ++outside;
          EXPECT_EQ(value, VOXEL_OUTSIDE);
          EXPECT_EQ(s, CGAL::ON_UNBOUNDED_SIDE) << i << " " << j << " " << k;
        }
      }
  EXPECT_GT(inside, 0u);
  EXPECT_GT(outside, 0u);
}

}  // namespace

TEST(voxelSideOfMesh, sphereAgreesAtEveryVoxelCentre) {
  editMesh m;
  testMeshes::makeSphere(m, 24, 48);
  testMeshes::finishMesh(m);
  checkAgainstCgal(m, 40);
}

TEST(voxelSideOfMesh, torusAgreesAtEveryVoxelCentre) {
  editMesh m;
  m.makeTorus(true, false, false, 48, 24, 1.f, 0.35f);
  testMeshes::finishMesh(m);
  checkAgainstCgal(m, 48);
}

#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "jev3d/algo/measurement/intersectionComputation.h"
#include "jev3d/algo/measurement/intersectionDescriptor.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/system/event.h"
#include "jev3d/system/flags.h"
#include "jev3d/system/job.h"
#include "jev3d/system/thread.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class meshInterface;
namespace ALGO {
namespace MEASUREMENT {

// Distances between placed models through their voxel volumes, computed on worker
// threads. Models sit in groups; each model is tested against the models of the other
// groups. A model's volume is computed once from a working copy, whose holes are closed
// first so that an open scan still has an inside, and serves every
// placement; a test measures each vertex against the other model, and the colours show
// each vertex's signed distance to the nearest other model (negative inside it).
//
// updateVolume and updateTest return at once and run on a thread of their own, which
// runs one job per model or pair through a threadJob and then sets the matching event.
// While one runs, the models must not change.
class volumeDistance {
 public:
  struct modelData {
    meshInterface* source = nullptr;
    editMesh clone;  // the working copy the volume was made from, its holes closed
    // The source's vertex id of each copy vertex; 0xFFFFFFFF for the vertices that
    // closing the holes added.
    std::vector<unsigned int> sourceOf;
    VOXEL::voxelModel voxels;        // volume, closest-point transform, signed field
    MATH::matrix4<float> transform;  // placement, row vectors (p·m)
    SYSTEM::flags<int> flag;
    bool volumeValid = false;
    // Per source vertex: the signed distance to the nearest other model, MAX_T where
    // none lies within reach.
    std::vector<float> distances;
  };

  // One test: the (group, model) pairs of its two models, and its result.
  struct threadJobType : public SYSTEM::job {
    uint64_t group1 = 0, model1 = 0, group2 = 0, model2 = 0;
    intersectionDescriptor result;
    bool done = false;
  };

  volumeDistance();
  // Asks the workers to stop and waits for them.
  ~volumeDistance();
  volumeDistance(const volumeDistance&) = delete;
  volumeDistance& operator=(const volumeDistance&) = delete;

  // Adds or replaces model `model` of group `group`: its volume is to be computed again.
  void addModel(uint64_t group, uint64_t model, meshInterface* mesh,
                const MATH::matrix4<float>& transform,
                SYSTEM::flags<int> flag = SYSTEM::flags<int>());
  // The model's mesh changed: its volume, the tests and colours are stale.
  void update(uint64_t group, uint64_t model);
  // The model moved: tests and colours are stale, the volume holds.
  void updateTransform(uint64_t group, uint64_t model, const MATH::matrix4<float>& transform);

  // Starts computing the stale volumes; false when a worker runs already.
  bool updateVolume(SYSTEM::callBack* cb = nullptr);
  // Starts the tests of all pairs not skipped; false when a worker runs or a volume is
  // stale.
  bool updateTest(SYSTEM::callBack* cb = nullptr);
  // Colours the source meshes by their distances over the range of all; false while the
  // tests are stale.
  bool updateColor();

  // Leaves the pair out of later tests (either order) until clearSkipTest.
  void addSkipTest(uint64_t group1, uint64_t model1, uint64_t group2, uint64_t model2);
  void clearSkipTest() { skips.clear(); }
  // Drops every model (after stopping the workers).
  void clear();
  // The group and model holding mesh; false when none does.
  bool find(const meshInterface* mesh, uint64_t& group, uint64_t& model) const;

  // Each model's place in the table, in group then model order, as one byte; 255 for a
  // model that is not held or lies past the 255th.
  unsigned char getUniqueId(uint64_t group, uint64_t model) const;
  bool getIndexFromUniqueId(unsigned char id, uint64_t& group, uint64_t& model) const;

  const modelData* getModel(uint64_t group, uint64_t model) const;
  // Voxels along the longest side of each model's box (default 64).
  void setResolution(unsigned int voxels) { resolution = voxels; }

  SYSTEM::event& getEvtVolumeDone() { return volumeDone; }
  SYSTEM::event& getEvtTestDone() { return testDone; }
  bool isVolumeValid() const { return volumeValid; }
  bool isTestValid() const { return testValid; }
  bool isColorValid() const { return colorValid; }
  bool isThreadVolumeIsRunning() const { return volumeRunning; }
  bool isThreadTestIsRunning() const { return testRunning; }
  void invalidateVolume();
  void invalidateTest() { testValid = colorValid = false; }
  void invalidateColor() { colorValid = false; }

  // Asks a running worker to start no further job; its run ends with its state invalid.
  void cancel() { cancelled = true; }
  // Waits for the worker threads to end.
  void wait();

 private:
  modelData* findModel(uint64_t group, uint64_t model);
  bool skipTest(const threadJobType& pair) const;
  // Every pair of models of different groups, in table order.
  std::vector<std::unique_ptr<threadJobType>> find_all_to_of() const;

  void computeVolume(modelData& model);
  void computeVolumeTest(threadJobType& pair);
  // The thread bodies and the job bodies they run.
  void delegateMainComputeVolume();
  void delegateComputeVolume(SYSTEM::job* j);
  void delegateMainComputeTest();
  void delegateComputeTest(SYSTEM::job* j);
  // Counts one finished job towards the running worker's progress.
  void jobDone();

  std::map<uint64_t, std::map<uint64_t, std::unique_ptr<modelData>>> groups;
  std::vector<threadJobType> skips;
  unsigned int resolution = 64;

  std::atomic<bool> volumeValid{false}, testValid{false}, colorValid{false};
  std::atomic<bool> volumeRunning{false}, testRunning{false}, cancelled{false};
  SYSTEM::event volumeDone{true}, testDone{true};
  std::unique_ptr<SYSTEM::thread> worker;

  // The running worker's jobs and its progress.
  std::vector<std::unique_ptr<SYSTEM::job>> volumeJobs;
  std::vector<std::unique_ptr<threadJobType>> testJobs;
  SYSTEM::callBack* progress = nullptr;
  std::mutex progressLock;
  std::size_t jobsDone = 0, jobCount = 0;
};

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV

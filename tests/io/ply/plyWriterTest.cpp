#include "jev3d/io/ply/plyWriter.h"

#include <gtest/gtest.h>

#include "jev3d/io/ply/plyReader.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using namespace JEV::IO::PLY;

namespace {

struct sample {
  double weight;
  short level;
};

TEST(plyWriter, writesRecordsThatTheReaderTakesBackInEveryForm) {
  tempDir dir;
  const std::vector<sample> samples = {{0.1, -3}, {1e300, 32767}, {-0.0, 0}};
  const plyPropertyDescription weight = {"weight", PLY_DOUBLE, PLY_DOUBLE,
                                         offsetof(sample, weight)};
  const plyPropertyDescription level = {"level", PLY_SHORT, PLY_SHORT, offsetof(sample, level)};
  for (const int type : {PLY_ASCII, PLY_BINARY_BE, PLY_BINARY_LE}) {
    plyWriter writer;
    ASSERT_TRUE(writer.open(dir.file("s.ply"), type, {"sample"}));
    writer.addComment("made here");
    writer.addObjInfo("three samples");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(writer.describeElement("other", 1));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ply_describe_element: can't find element 'other'\n");
    ASSERT_TRUE(writer.describeElement("sample", 3));
    writer.describeProperty(weight);
    writer.describeProperty(level);
    ASSERT_TRUE(writer.headerComplete());
    ASSERT_TRUE(writer.putElementSetup("sample"));
    writer.setSource(weight, samples.data(), sizeof(sample));
    writer.setSource(level, samples.data(), sizeof(sample));
    writer.putElements(3);
    ASSERT_TRUE(writer.close());

    const std::string bytes = readBytes(dir.file("s.ply"));
    EXPECT_EQ(bytes.find("comment made here\nobj_info three samples\nelement sample 3\n"
                         "property double weight\nproperty short level\nend_header\n"),
              bytes.find("comment"));
    std::vector<sample> back(3);
    plyReader reader;
    ASSERT_TRUE(reader.open(dir.file("s.ply")));
    EXPECT_EQ(reader.getFileType(), type);
    ASSERT_NE(reader.nextElement(), nullptr);
    ASSERT_TRUE(reader.storeProperty(weight, back.data(), sizeof(sample)));
    ASSERT_TRUE(reader.storeProperty(level, back.data(), sizeof(sample)));
    ASSERT_TRUE(reader.getElements(3));
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(back[i].weight, samples[i].weight);
      EXPECT_EQ(back[i].level, samples[i].level);
    }
  }
}

}  // namespace

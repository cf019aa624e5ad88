// Data sets from strangers who don't mean well.
#include "Tests/Data/Verbs/SampleSet.h"

namespace Orvik::Data
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

class HostileImport : public SampleSet
{
protected:
    HostileImport()
    {
        for (const char* folder : {"images", "labels", "JPEGImages", "Annotations"})
            fs::create_directories(m_set / folder);
        const auto picture = Tests::MakeSamplePicture("interface", 100, 80);
        for (const char* name : {"images/a.png", "JPEGImages/a.png", "secret.png", "../outside.png"})
            EXPECT_TRUE(picture.SavePng(GetText(m_set / name)));
    }

    [[nodiscard]] ProgramRun Import(const char* format) const
    {
        return RunWith({"import", format, GetText(m_set), At("back"), "--force"});
    }

    /// What comes of one annotation of this text for the picture a.png of 100 x 80.
    ProgramRun ImportCoco(const std::string& annotation, const std::string& name = "a.png")
    {
        WriteText(m_set / "annotations.json",
                  "{\"images\": [{\"id\": 1, \"file_name\": \"" + name +
                      "\", \"width\": 100, \"height\": 80}], \"categories\": [{\"id\": 7, \"name\": \"x\"}], "
                      "\"annotations\": [" +
                      annotation + "]}");
        return Import("coco");
    }

    ProgramRun ImportYolo(const std::string& line)
    {
        WriteText(m_set / "data.yaml", "names: [x]\n");
        WriteText(m_set / "labels" / "a.txt", line);
        return Import("yolo");
    }

    ProgramRun ImportVoc(const std::string& object, const std::string& name = "a.png")
    {
        WriteText(m_set / "Annotations" / "a.xml", "<annotation><filename>" + name +
                                                       "</filename><object><name>x</name>" + object +
                                                       "</object></annotation>");
        return Import("voc");
    }

    /// Files that came; the list of the classes comes in any case.
    [[nodiscard]] std::size_t CountBack() const
    {
        const fs::path back = m_directory.GetPath() / "back";
        return CountFiles(back) - (fs::exists(back / "classes.txt") ? 1 : 0);
    }

    /// The only annotation that came.
    [[nodiscard]] Annotation GetOnly() const
    {
        const RecordSchemas schemas;
        const fs::path json = m_directory.GetPath() / "back" / (MakeIdentifier("a.png") + ".json");
        const ReadRecord read = LoadRecord(json, schemas);
        if (!read.record || read.record->annotations.size() != 1)
        {
            ADD_FAILURE() << "not one annotation";
            return {};
        }
        return read.record->annotations[0];
    }

    fs::path m_set = m_directory.GetPath() / "set";
};

constexpr const char* s_cocoBox = R"({"id": 1, "image_id": 1, "category_id": 7, "bbox": [10, 20, 30, 40]})";
constexpr const char* s_vocBox = "<bndbox><xmin>11</xmin><ymin>21</ymin><xmax>40</xmax><ymax>60</ymax></bndbox>";
constexpr System::Math::Rectangle s_box = {10, 20, 40, 60};

TEST_F(HostileImport, TheSetsAreGoodButForWhatIsChanged)
{
    EXPECT_EQ(ImportCoco(s_cocoBox).code, ExitCode::Done);
    EXPECT_EQ(GetOnly().box, s_box);
    EXPECT_EQ(ImportYolo("0 0.25 0.5 0.3 0.5\n").code, ExitCode::Done);
    EXPECT_EQ(GetOnly().box, s_box);
    EXPECT_EQ(ImportVoc(s_vocBox).code, ExitCode::Done);
    EXPECT_EQ(GetOnly().box, s_box);
}

TEST_F(HostileImport, NoNameLeadsOutOfTheSet)
{
    for (const char* name : {"../secret.png", "../../outside.png", "/etc/passwd", "images/../../secret.png",
                             "..\\\\secret.png", "C:/secret.png", "a\\u0000.png", "", ".", "CON.png"})
    {
        const ProgramRun run = ImportCoco(s_cocoBox, name);
        EXPECT_EQ(run.code, ExitCode::Findings) << name;
        EXPECT_EQ(CountBack(), 0U) << name;
        fs::remove_all(m_directory.GetPath() / "back");
    }
    for (const char* name : {"../secret.png", "../../outside.png", "/etc/passwd", "..\\secret.png", "x/a.png", "."})
    {
        EXPECT_EQ(ImportVoc(s_vocBox, name).code, ExitCode::Findings) << name;
        EXPECT_EQ(CountBack(), 0U) << name;
        fs::remove_all(m_directory.GetPath() / "back");
    }
}

TEST_F(HostileImport, ANameThatCannotBeUsedIsSaid)
{
    EXPECT_THAT(ImportCoco(s_cocoBox, "../secret.png").errors, testing::HasSubstr("can't be used: ../secret.png\n"));
}

TEST_F(HostileImport, AnAnnotationThatCannotBeUsedIsSaid)
{
    EXPECT_THAT(ImportCoco(R"({"id": 5, "image_id": 1, "category_id": 8, "bbox": [0, 0, 1, 1]})").errors,
                HasSubstr("a.png: annotation 5 is of no category in the file\n"));
    const ProgramRun run = ImportCoco(R"({"id": 6, "image_id": 2, "category_id": 7, "bbox": [0, 0, 1, 1]})");
    EXPECT_EQ(run.code, ExitCode::CannotRun);
    EXPECT_THAT(run.errors, HasSubstr("annotation 6 is of no picture in the file\n"));
    EXPECT_THAT(ImportCoco(R"({"image_id": 2})").errors, HasSubstr("an annotation is of no picture in the file\n"));
}

TEST_F(HostileImport, AnIdentifierInAFolderIsKept)
{
    const std::string id = MakeIdentifier("kept");
    fs::create_directories(m_set / "images" / "train");
    fs::copy_file(m_set / "images" / "a.png", m_set / "images" / "train" / (id + ".png"));
    EXPECT_EQ(ImportCoco(s_cocoBox, "train/" + id + ".png").code, ExitCode::Done);
    EXPECT_TRUE(fs::exists(m_directory.GetPath() / "back" / (id + ".png")));
}

TEST_F(HostileImport, ASetThatCannotBeReadLeavesNoFolder)
{
    EXPECT_EQ(Import("coco").code, ExitCode::CannotRun);
    EXPECT_FALSE(fs::exists(m_directory.GetPath() / "back"));
}

TEST_F(HostileImport, WhatReachesAPixelBeyondAPictureOfUnknownSizeIsCut)
{
    EXPECT_EQ(ImportVoc("<bndbox><xmin>11</xmin><ymin>21</ymin><xmax>101</xmax><ymax>81</ymax></bndbox>"
                        "<polygon><pt><x>10</x><y>20</y></pt><pt><x>101</x><y>20</y></pt>"
                        "<pt><x>101</x><y>81</y></pt></polygon>")
                  .code,
              ExitCode::Done);
    EXPECT_EQ(GetOnly().box, (System::Math::Rectangle{10, 20, 100, 80}));
    EXPECT_EQ(GetOnly().ring, (Ring{{10, 20}, {100, 20}, {100, 80}, {10, 20}}));
    EXPECT_EQ(ImportVoc("<bndbox><xmin>11</xmin><ymin>21</ymin><xmax>102</xmax><ymax>80</ymax></bndbox>").code,
              ExitCode::Findings);
}

TEST_F(HostileImport, EachPolygonThatBecomesItsBoxIsCounted)
{
    for (const char* polygon : {"[500, 500, 1, 1, 1, 9]", "[1, 1, 9, 9]", "[1, 2, 3]", "[1, 1, 5, 1, 9, 1]"})
    {
        const std::string annotation = R"({"id": 1, "image_id": 1, "category_id": 7, "bbox": [10, 20, 30, 40], )"
                                       R"("segmentation": [)";
        const ProgramRun run = ImportCoco(annotation + polygon + "]}");
        EXPECT_THAT(run.output, HasSubstr("polygons that became their boxes: 1\n")) << polygon;
        EXPECT_EQ(GetOnly().box, s_box) << polygon;
    }
}

TEST_F(HostileImport, BoxesLieWithinThePicture)
{
    for (const char* box : {"[-2, 0, 10, 10]", "[95, 0, 10, 10]", "[0, 0, 0, 10]", "[0, 0, 10]", "[0, 0, 1e300, 10]",
                            "[0, 0, -5, 10]", "[0, 0, \"1\", 10]", "{}", "[1e9, 0, 1, 1]"})
        EXPECT_EQ(ImportCoco(std::string(R"({"image_id": 1, "category_id": 7, "bbox": )") + box + "}").code,
                  ExitCode::Findings)
            << box;
    for (const char* line : {"0 0.5 0.5 1.2 0.5", "0 0.5 0.5 0.5", "1 0.5 0.5 0.5 0.5", "-1 0.5 0.5 0.5 0.5",
                             "0 nan 0.5 0.5 0.5", "0 inf 0.5 0.5 0.5", "0 1e300 0.5 0.5 0.5", "x 0.5 0.5 0.5 0.5",
                             "0 0.5 0.5 0.5 0.5 0.5", "0 0.5 0.5 0 0", "0,5 0.5 0.5 0.5 0.5", "0 0 0 2 0 0 2"})
        EXPECT_EQ(ImportYolo(line).code, ExitCode::Findings) << line;
    for (const char* box : {"<bndbox><xmin>11</xmin><ymin>21</ymin><xmax>140</xmax><ymax>60</ymax></bndbox>",
                            "<bndbox><xmin>41</xmin><ymin>21</ymin><xmax>40</xmax><ymax>60</ymax></bndbox>",
                            "<bndbox><xmin>x</xmin><ymin>21</ymin><xmax>40</xmax><ymax>60</ymax></bndbox>",
                            "<bndbox><xmin>1</xmin></bndbox>", ""})
        EXPECT_EQ(ImportVoc(box).code, ExitCode::Findings) << box;
    EXPECT_EQ(CountBack(), 0U);
}

TEST_F(HostileImport, APixelBeyondIsCutOff)
{
    EXPECT_EQ(ImportCoco(R"({"image_id": 1, "category_id": 7, "bbox": [-0.6, 0.2, 101.3, 80.4]})").code,
              ExitCode::Done);
    EXPECT_EQ(GetOnly().box, (System::Math::Rectangle{0, 0, 100, 80}));
}

TEST_F(HostileImport, WhatIsNoSingleRingBecomesItsBox)
{
    for (const char* segmentation :
         {"[[1,1,2,2,3,1],[4,4,5,5,6,4]]", "{\"counts\": [1,2], \"size\": [80,100]}", "[[1,2,3]]", "[[1,\"2\"]]"})
    {
        const ProgramRun run =
            ImportCoco(std::string(R"({"image_id": 1, "category_id": 7, "bbox": [10, 20, 30, 40], )") +
                       "\"segmentation\": " + segmentation + "}");
        EXPECT_EQ(run.code, ExitCode::Done) << segmentation << run.errors;
        EXPECT_THAT(run.output, HasSubstr("became their boxes: 1\n"));
        EXPECT_EQ(GetOnly().box, s_box);
        EXPECT_TRUE(GetOnly().ring.empty());
    }
}

TEST_F(HostileImport, ARingIsTheBoxOfItself)
{
    ASSERT_EQ(ImportCoco(R"({"image_id": 1, "category_id": 7, "bbox": [10.2, 20, 30, 40],
                             "segmentation": [[10.4, 30, 20, 20.1, 39.9, 59.6]]})")
                  .code,
              ExitCode::Done);
    EXPECT_EQ(GetOnly().box, s_box);
    EXPECT_EQ(GetOnly().ring, (Ring{{10, 30}, {20, 20}, {40, 60}, {10, 30}}));
}

TEST_F(HostileImport, ReferencesLeadSomewhere)
{
    EXPECT_EQ(ImportCoco(R"({"image_id": 2, "category_id": 7, "bbox": [10, 20, 30, 40]})").code, ExitCode::CannotRun);
    EXPECT_EQ(ImportCoco(R"({"image_id": 1, "category_id": 8, "bbox": [10, 20, 30, 40]})").code, ExitCode::Findings);
    EXPECT_EQ(ImportCoco(R"({"category_id": 7, "bbox": [10, 20, 30, 40]})").code, ExitCode::CannotRun);
    EXPECT_EQ(ImportCoco("1").code, ExitCode::CannotRun);
}

TEST_F(HostileImport, TwoPicturesOfOneNameDontMixUp)
{
    WriteText(m_set / "annotations.json",
              R"({"images": [{"id": 1, "file_name": "a.png"}, {"id": 2, "file_name": "a.png"}],
                  "categories": [{"id": 7, "name": "x"}],
                  "annotations": [{"image_id": 1, "category_id": 7, "bbox": [10, 20, 30, 40]},
                                  {"image_id": 2, "category_id": 7, "bbox": [10, 20, 30, 40]}]})");
    const ProgramRun run = Import("coco");
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr("in this run already"));
    EXPECT_EQ(CountBack(), 2U);
    EXPECT_EQ(GetOnly().box, s_box);
}

TEST_F(HostileImport, SizesHaveToAgree)
{
    ASSERT_TRUE(Tests::MakeSamplePicture("text", 101, 80).SavePng(GetText(m_set / "images" / "a.png")));
    const ProgramRun run = ImportCoco(s_cocoBox);
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr("another size"));
}

TEST_F(HostileImport, NamesOfClassesAreLabels)
{
    WriteText(m_set / "data.yaml", "names: [\"a\x1B[2J\"]\n");
    EXPECT_EQ(Import("yolo").code, ExitCode::CannotRun);
    EXPECT_EQ(ImportVoc(std::string(s_vocBox) + "</object><object><name>a&#10;b</name>" + s_vocBox).code,
              ExitCode::Findings);
}

TEST_F(HostileImport, AnXmlThatGrowsIsRefused)
{
    WriteText(m_set / "Annotations" / "a.xml",
              "<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]><annotation>&b;</annotation>");
    const ProgramRun run = Import("voc");
    EXPECT_EQ(run.code, ExitCode::Findings);
    EXPECT_THAT(run.errors, HasSubstr("isn't the XML"));
}

TEST_F(HostileImport, APictureOfNothingIsLeftOut)
{
    const ProgramRun run = ImportYolo("\n");
    EXPECT_EQ(run.code, ExitCode::Done);
    EXPECT_THAT(run.output, HasSubstr("pictures without annotations, left out: 1\n"));
}

} // namespace
} // namespace Orvik::Data

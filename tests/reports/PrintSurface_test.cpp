// The table strings of the reports and the recording surface's lines.

#include "reports/PrintSurface.h"

#include <gtest/gtest.h>

using namespace reports;

TEST(TableFormat, ReadsBoxesAlignmentsAndWidths)
{
    const auto columns = ParseTableFormat("+^1200|<850|>2000|2700|+x;");
    ASSERT_EQ(columns.size(), 5u);
    EXPECT_TRUE(columns[0].box);
    EXPECT_EQ(columns[0].align, Align::Centre);
    EXPECT_EQ(columns[0].width, 1200);
    EXPECT_FALSE(columns[1].box);
    EXPECT_EQ(columns[1].align, Align::Left);
    EXPECT_EQ(columns[2].align, Align::Right);
    EXPECT_EQ(columns[3].align, Align::Left);
    EXPECT_EQ(columns[3].width, 2700);
    // A width that is no number counts as 0.
    EXPECT_TRUE(columns[4].box);
    EXPECT_EQ(columns[4].width, 0);

    EXPECT_TRUE(ParseTableFormat(";").empty());
    EXPECT_EQ(ParseTableFormat("^1400").size(), 1u);

    EXPECT_EQ(SplitHeader("ObjectID|Other Name|;"),
              (std::vector<std::string>{"ObjectID", "Other Name", ""}));
    EXPECT_EQ(BodyString({{"a|b", "c"}, {"", ""}}), "a|b|c;|;");
}

TEST(RecordingSurface, KeepsCallsAndCountsPages)
{
    RecordingSurface s;
    s.StartDoc();
    s.SetFont({"Arial", 12, true});
    s.Paragraph("Object Data :");
    s.Table("^1400|^1500;", "ObjectID|Other Name;", {{"M 1", "NGC 1952"}});
    s.Table("2700|3000;", "", {}, {1, 2, 3});
    s.NewPage();
    s.EndDoc();
    EXPECT_EQ(s.PageCount(), 2);
    EXPECT_TRUE(s.Has("Font Arial 12 B"));
    EXPECT_EQ(s.Paragraphs(), std::vector<std::string>{"Object Data :"});
    EXPECT_EQ(s.Tables()[0], "^1400|^1500; ObjectID|Other Name; M 1|NGC 1952;");
    EXPECT_EQ(s.Tables()[1], "2700|3000;   h 1,2,3 b 255,255,255");
    EXPECT_EQ(PaperWidth(Paper::Letter, Orientation::Landscape), 15840);
}

#include "qeltin/render/GlDrawable.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "testing/PlaceInTable.h"

namespace {

struct Blank : GlDrawable {
  void Draw(GlContext const*, double) override {}
};

TEST(GlDrawable, IsAbstractWithAVirtualDestructor) {
  EXPECT_TRUE(std::is_abstract_v<GlDrawable>);
  EXPECT_TRUE(std::has_virtual_destructor_v<GlDrawable>);
}

TEST(GlDrawable, VirtualOperationsKeepTheirOrder) {
  EXPECT_EQ(qeltin::testing::PlaceInTable(&GlDrawable::Draw), 2);
}

TEST(GlDrawable, StartsWithTheDefaultAttributes) {
  Blank drawable;
  EXPECT_EQ(*drawable.GetDrawingAttributes(), GlDrawingAttributes());
}

TEST(GlDrawable, AttributesAreSetInPlaceAndCopied) {
  Blank drawable;
  drawable.GetDrawingAttributes()->SetLineStipplePattern(0x00FF);
  Blank const copy(drawable);
  EXPECT_EQ(copy.GetDrawingAttributes()->GetLineStipplePattern(), 0x00FF);
  drawable.GetDrawingAttributes()->SetToDefault();
  EXPECT_EQ(copy.GetDrawingAttributes()->GetLineStipplePattern(), 0x00FF);
}

TEST(GlDrawable, AssignmentToTheBaseCopiesTheAttributes) {
  Blank drawable;
  drawable.GetDrawingAttributes()->SetLineStipplePattern(0x00FF);
  Blank other;
  GlDrawable& base = other;
  base = drawable;
  EXPECT_EQ(other.GetDrawingAttributes()->GetLineStipplePattern(), 0x00FF);
}

}  // namespace

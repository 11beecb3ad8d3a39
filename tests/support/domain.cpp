#include "support/domain.hpp"

namespace tarnvik::testing {

TARNVIK_DEFINE_CLASS(Clip, Object,
                     c.property(u"name", &Clip::name)
                         .property(u"frames", &Clip::frames)
                         .property(u"selected", &Clip::selected)
                         .property(u"owner", &Clip::owner)
                         .method(u"isSelected", &Clip::isSelected)
                         .method(u"title", &Clip::title)
                         .method(u"nothing", &Clip::nothing)
                         .method(u"seconds", &Clip::seconds)
                         .method(u"ratio", &Clip::ratio)
                         .method(u"takes", &Clip::takes))
TARNVIK_DEFINE_CLASS(StillClip, Clip, )

}  // namespace tarnvik::testing

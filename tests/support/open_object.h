// A media object that a test can look into.
#pragma once

#include "shell/media_object.h"
#include "tests/support/test_object.h"

namespace clarivex {

class OpenObject : public CVXMediaObject {
public:
    using CVXMediaObject::NextRequest;
    using CVXMediaObject::Stream;
};

/// The object in its plain shape with all its interfaces, which own it.
struct OpenTestObject {
    PlainObject<OpenObject>* open = new PlainObject<OpenObject>;
    TestObject object{Ask<IMediaObject>(open->Identity(), iidMediaObject)};
};

}  // namespace clarivex

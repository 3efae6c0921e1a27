#pragma once

namespace velt {

// A public class with no members. It is not a control, so no container can
// create it; it exists so that the library's set of classes is complete.
class ClsMain final {};

}  // namespace velt

#pragma once
// Component streaming: a form (a root component with the components it owns) to JSON and
// back, through the stored properties that each class declares once. One include for all
// of it:
//
//   KXFiler.h    what a class declares (DefineProperties) and how each value type is stored
//   KXWriter.h   TWriter and SaveFormToFile / Stream / String
//   KXReader.h   TReader and LoadFormFromFile / Stream / String
//
// Dates are stored as ISO 8601 text (DateTimeToISO, ISOToDateTime in KXDateUtils.h).

#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXFiler.h"
#include "kxcharts/toolkit/objects/KXReader.h"
#include "kxcharts/toolkit/objects/KXWriter.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

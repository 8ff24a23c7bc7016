#pragma once

// The whole exception family in one include.
#include "FeatureNotImplementedException.h"
#include "FileNotFoundException.h"
#include "IException.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalSizeException.h"
#include "IllegalStateException.h"
#include "IndexOutOfBoundsException.h"
#include "NoSuchMethodException.h"
#include "ParserException.h"
#include "SystemException.h"
#include "VersionConflictException.h"

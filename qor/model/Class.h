// Everything that the header of a generated entity class needs: include this one.
#ifndef QOR_MODEL_CLASS_H
#define QOR_MODEL_CLASS_H

#include <qor/model/Attribute.h>
#include <qor/model/AttributeIterators.h>
#include <qor/model/Keyed.h>
#include <qor/model/Notifier.h>
#include <qor/model/Owned.h>
#include <qor/model/Reference.h>
#include <qor/model/Scalar.h>
#include <qor/model/SetAttribute.h>

#endif

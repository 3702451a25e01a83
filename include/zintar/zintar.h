#pragma once

/// @file
/// The whole library but for `containers.h`, which gives forms to the containers of all files.
/// `fwd.h` is enough for a header that only names the types of the library.

// In front, so that a mistake in a subscription is few includes away.
#include <zintar/detail/makehandler.h>
#include <zintar/detail/typedevent.h>

#include <zintar/base.h>
#include <zintar/bind.h>
#include <zintar/changehold.h>
#include <zintar/checked.h>
#include <zintar/classes.h>
#include <zintar/classrecord.h>
#include <zintar/classstore.h>
#include <zintar/converter.h>
#include <zintar/create.h>
#include <zintar/datastream.h>
#include <zintar/declare.h>
#include <zintar/dynamicbase.h>
#include <zintar/enumeration.h>
#include <zintar/eventblocker.h>
#include <zintar/eventlistener.h>
#include <zintar/eventmonitor.h>
#include <zintar/eventqueue.h>
#include <zintar/find.h>
#include <zintar/fwd.h>
#include <zintar/integers.h>
#include <zintar/kind.h>
#include <zintar/log.h>
#include <zintar/logcapture.h>
#include <zintar/loghandler.h>
#include <zintar/memberbuilders.h>
#include <zintar/metaclass.h>
#include <zintar/metaclassbuilder.h>
#include <zintar/metatype.h>
#include <zintar/metatypeof.h>
#include <zintar/outcome.h>
#include <zintar/propertyname.h>
#include <zintar/record.h>
#include <zintar/reference.h>
#include <zintar/shortname.h>
#include <zintar/standardconverters.h>
#include <zintar/staticmetaclass.h>
#include <zintar/subscribeoptions.h>
#include <zintar/subscription.h>
#include <zintar/typedvalue.h>
#include <zintar/typename.h>
#include <zintar/variant.h>
#include <zintar/version.h>
#include <zintar/view.h>
#include <zintar/visit.h>

#pragma once

// The public headers of the component record: a trail of signed entries, over the core.
#include "qellib10/record/key_file_signer.h"
#include "qellib10/record/person_key.h"
#include "qellib10/record/person_signer.h"
#include "qellib10/record/person_statement.h"
#include "qellib10/record/signature_check.h"
#include "qellib10/record/signer.h"
#include "qellib10/record/signing.h"
#include "qellib10/record/signing_rules.h"
#include "qellib10/record/ssh_agent_signer.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_check.h"
#include "qellib10/record/trail_entry.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_reader.h"
#include "qellib10/record/trail_settings.h"

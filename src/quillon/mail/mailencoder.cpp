#include "quillon/mail/encodedmail.h"

#include "quillon/mail/mailtransport.h"

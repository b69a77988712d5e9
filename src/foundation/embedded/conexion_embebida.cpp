#include "foundation/embedded/conexion_embebida.h"

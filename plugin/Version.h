#pragma once

// The product version as users see it (editor title) and as hosts see it (class information).
#define VELMORAN_VERSION "3.1.4"
#define VELMORAN_CLASS_VERSION VELMORAN_VERSION ".0"

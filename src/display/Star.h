#pragma once

// One background star.
class CStar {
};

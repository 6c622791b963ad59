// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Prints the test vectors of position commands.
 */
#include <iostream>

#include "position_vectors.h"

int main() {
    std::cout << vectors::positionVectors().dump(1) << std::endl;
    return std::cout ? 0 : 1;
}

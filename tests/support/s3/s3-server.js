// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// A local S3 server for the upload tests. Usage: node s3-server.js DIRECTORY BUCKET...
// Prints "ready PORT" once it listens on 127.0.0.1.
'use strict';
const S3rver = require('s3rver');

const [directory, ...buckets] = process.argv.slice(2);
const server = new S3rver({
    address: '127.0.0.1',
    port: 0,
    silent: true,
    directory,
    configureBuckets: buckets.map((name) => ({ name })),
});
server.run().then(
    ({ port }) => console.log(`ready ${port}`),
    (error) => {
        console.error(error);
        process.exit(1);
    },
);
process.on('SIGTERM', () => server.close().then(() => process.exit(0)));

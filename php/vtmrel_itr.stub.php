<?php

/** @generate-class-entries */

/**
 * The rows of one report. Its handle goes to a report method of vt_mrel; each fetch then rewrites the
 * public properties with the next row.
 *
 * @not-serializable
 */
#[AllowDynamicProperties]
final class vt_mrel_itr
{
    public function __construct() {}

    /**
     * What a report method of vt_mrel takes as its last argument; valid while this object lives.
     *
     * @return int
     */
    public function getHandle() {}

    /**
     * Goes to the next row; of a trace, copies the message and answers 0. After a 0 the walk begins
     * again.
     *
     * @return int 1 when there was a row, else 0
     */
    public function fetch() {}

    /**
     * Goes to the next recipient of the traced message.
     *
     * @return int 1 when there was one, else 0
     */
    public function fetch_recipient() {}

    /**
     * Goes to the next day of the user that fetch() went to.
     *
     * @return int 1 when there was one, else 0
     */
    public function fetch_msgs_per_day() {}
}
